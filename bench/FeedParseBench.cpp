// Reading a 10 MB feed from disk into a Channel, against two yardsticks on the same file: the
// floor (libxml2 alone reading, parsing and walking every node) and Debian's python3-feedparser.
// Times are processor time, the best of the runs (best_cpu_ms). Each benchmark also reports the
// peak memory its work adds (peak_MB) and, for the channel and feedparser, the ratios to the floor
// (x_floor_time, x_floor_memory).
#include "model/Channel.h"
#include "parse/FeedFile.h"
#include "platform/FsPath.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <limits>
#include <malloc.h>
#include <map>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

namespace {

namespace fs = std::filesystem;

constexpr int kStories = 5000;
constexpr std::size_t kTargetBytes = 10 * 1024 * 1024;
constexpr const char* kPython = "/usr/bin/python3";

enum Format { kRss = 0, kAtom = 1 };
const char* const kFormatNames[] = {"rss", "atom"};

// About 1.9 kB of story text as escaped HTML, as feeds carry it; a few non-ASCII words keep the
// conversions honest.
std::string StoryText(int story) {
    std::string text = "&lt;p&gt;Story " + std::to_string(story) + " of the day, caf\xC3\xA9 " +
                       "\xE4\xB8\xAD\xE6\x96\x87 &amp; more.&lt;/p&gt;";
    while (text.size() < 1850) {
        text += "&lt;p&gt;Markets moved as analysts weighed the latest figures; readers "
                "followed the &lt;a href=\"https://news.example.com/more\"&gt;full report"
                "&lt;/a&gt;.&lt;/p&gt;";
    }
    return text;
}

std::string RssStory(int story) {
    const std::string n = std::to_string(story);
    return "<item><title>Headline number " + n + ": a story of moderate length</title>" +
           "<link>https://news.example.com/2024/05/story-" + n + ".html</link>" +
           "<guid isPermaLink=\"false\">urn:story:" + n + "</guid>" +
           "<pubDate>Mon, 22 Oct 2007 22:16:44 GMT</pubDate><category>World</category>" +
           "<description>" + StoryText(story) + "</description></item>\n";
}

std::string AtomStory(int story) {
    const std::string n = std::to_string(story);
    return "<entry><title>Headline number " + n + ": a story of moderate length</title>" +
           "<link rel=\"alternate\" type=\"text/html\" href=\"https://news.example.com/2024/05/" +
           "story-" + n + ".html\"/><id>urn:story:" + n + "</id>" +
           "<updated>2007-10-22T22:16:44Z</updated><author><name>Desk</name></author>" +
           "<content type=\"html\">" + StoryText(story) + "</content></entry>\n";
}

std::string MakeFeed(Format format) {
    std::string feed = format == kRss
                           ? "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<rss version=\"2.0\">"
                             "<channel><title>Bench</title><language>en</language>\n"
                           : "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<feed xmlns="
                             "\"http://www.w3.org/2005/Atom\"><title>Bench</title>\n";
    const std::size_t storySize = (format == kRss ? RssStory(0) : AtomStory(0)).size();
    const int stories = static_cast<int>(std::max<std::size_t>(kStories, kTargetBytes / storySize));
    for (int story = 0; story < stories; ++story) {
        feed += format == kRss ? RssStory(story) : AtomStory(story);
    }
    feed += format == kRss ? "</channel></rss>\n" : "</feed>\n";
    return feed;
}

// The two feeds, written into a scratch folder on first use and removed at exit.
class FeedFiles {
public:
    FeedFiles()
        : folder_(fs::temp_directory_path() / ("quillfeed-bench-" + std::to_string(::getpid()))) {
        fs::create_directories(folder_);
        for (const Format format : {kRss, kAtom}) {
            std::ofstream(path(format), std::ios::binary) << MakeFeed(format);
        }
    }
    ~FeedFiles() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    FeedFiles(const FeedFiles&) = delete;
    FeedFiles& operator=(const FeedFiles&) = delete;

    fs::path path(Format format) const {
        return folder_ / (std::string(kFormatNames[format]) + ".xml");
    }

private:
    fs::path folder_;
};

fs::path FeedPath(Format format) {
    static const FeedFiles files;
    return files.path(format);
}

long StatusKb(const char* key) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind(key, 0) == 0) {
            return std::atol(line.c_str() + std::strlen(key) + 1);
        }
    }
    return 0;
}

// The peak resident memory that `work` adds, measured in a child process so that whatever the
// benchmark kept or freed before does not count.
double PeakGrowthMb(const std::function<void()>& work) {
    malloc_trim(0);
    int pipeFds[2];
    if (::pipe(pipeFds) != 0) {
        return 0;
    }
    const pid_t child = ::fork();
    if (child == 0) {
        const long before = StatusKb("VmRSS:");
        work();
        const double grown = static_cast<double>(StatusKb("VmHWM:") - before) / 1024.0;
        [[maybe_unused]] const auto written = ::write(pipeFds[1], &grown, sizeof grown);
        ::_exit(0);
    }
    ::close(pipeFds[1]);
    double grown = 0;
    if (::read(pipeFds[0], &grown, sizeof grown) != sizeof grown) {
        grown = 0;
    }
    ::close(pipeFds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    return grown;
}

// Processor time rather than wall time: the ratios stay meaningful on a machine that is busy
// with other work.
double CpuSeconds() {
    timespec now{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

struct Figures {
    double seconds = 0;
    double peakMb = 0;
};
std::map<int, Figures> floorFigures;

// Runs `work` for the benchmark's iterations and reports its figures, with the ratios to the
// floor's once the floor of that format has run.
void Measure(benchmark::State& state, Format format, bool isFloor,
             const std::function<void()>& work) {
    const double peakMb = PeakGrowthMb(work);
    // The fastest run, which other work on the machine disturbed least.
    double seconds = std::numeric_limits<double>::max();
    for (auto _ : state) {
        const double start = CpuSeconds();
        work();
        seconds = std::min(seconds, CpuSeconds() - start);
    }
    state.counters["best_cpu_ms"] = seconds * 1000.0;
    state.SetLabel(kFormatNames[format]);
    state.SetBytesProcessed(state.iterations() *
                            static_cast<int64_t>(fs::file_size(FeedPath(format))));
    state.counters["peak_MB"] = peakMb;
    if (isFloor) {
        floorFigures[format] = {seconds, peakMb};
    } else if (floorFigures.count(format) != 0) {
        state.counters["x_floor_time"] = seconds / floorFigures[format].seconds;
        state.counters["x_floor_memory"] = peakMb / floorFigures[format].peakMb;
    }
}

std::size_t WalkNodes(const xmlNode* node) {
    std::size_t touched = 0;
    for (; node != nullptr; node = node->next) {
        touched +=
            node->name != nullptr ? std::strlen(reinterpret_cast<const char*>(node->name)) : 0;
        if (node->content != nullptr) {
            touched += std::strlen(reinterpret_cast<const char*>(node->content));
        }
        for (const xmlAttr* attribute = node->properties; attribute != nullptr;
             attribute = attribute->next) {
            touched += WalkNodes(attribute->children);
        }
        touched += WalkNodes(node->children);
    }
    return touched;
}

void LibxmlFloor(benchmark::State& state) {
    const auto format = static_cast<Format>(state.range(0));
    const fs::path path = FeedPath(format);
    Measure(state, format, true, [&path] {
        std::string bytes(fs::file_size(path), '\0');
        std::ifstream(path, std::ios::binary)
            .read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        xmlDoc* document = xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr,
                                         nullptr, XML_PARSE_NONET);
        benchmark::DoNotOptimize(WalkNodes(xmlDocGetRootElement(document)));
        xmlFreeDoc(document);
    });
}

void FeedIntoChannel(benchmark::State& state) {
    const auto format = static_cast<Format>(state.range(0));
    const std::u16string path = qf::FromFsPath(FeedPath(format));
    Measure(state, format, false, [&path, &state] {
        qf::Channel channel;
        if (!qf::LoadFeedFile(path, channel, true) || channel.items().size() < kStories) {
            state.SkipWithError("the feed did not parse");
        }
    });
}

// feedparser in its own process; the script reports its own parse time and the peak memory the
// parse added, so that starting Python does not count.
constexpr const char* kFeedparserScript = R"(
import resource, sys, time, feedparser
def rss_kb():
    with open('/proc/self/status') as status:
        return next(int(l.split()[1]) for l in status if l.startswith('VmRSS:'))
before = rss_kb()
start = time.process_time()
parsed = feedparser.parse(sys.argv[1])
spent = time.process_time() - start
peak = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
print(spent, (peak - before) / 1024.0, len(parsed.entries))
)";

bool RunFeedparser(const fs::path& path, double& seconds, double& peakMb) {
    const std::string command =
        std::string(kPython) + " -c \"$QF_FEEDPARSER_SCRIPT\" '" + path.string() + "' 2>/dev/null";
    ::setenv("QF_FEEDPARSER_SCRIPT", kFeedparserScript, 1);
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return false;
    }
    char line[256] = {};
    const bool read = std::fgets(line, sizeof line, pipe) != nullptr;
    const bool exited = ::pclose(pipe) == 0;
    std::istringstream fields(line);
    int entries = 0;
    return read && exited && (fields >> seconds >> peakMb >> entries) && entries >= kStories;
}

void Feedparser(benchmark::State& state) {
    const auto format = static_cast<Format>(state.range(0));
    double peakMb = 0;
    double best = std::numeric_limits<double>::max();
    for (auto _ : state) {
        double seconds = 0;
        if (!RunFeedparser(FeedPath(format), seconds, peakMb)) {
            state.SkipWithError("python3-feedparser is missing or failed");
            return;
        }
        state.SetIterationTime(seconds);
        best = std::min(best, seconds);
    }
    state.SetLabel(kFormatNames[format]);
    state.counters["peak_MB"] = peakMb;
    state.counters["best_cpu_ms"] = best * 1000.0;
    if (floorFigures.count(format) != 0) {
        const Figures& floor = floorFigures[format];
        state.counters["x_floor_time"] = best / floor.seconds;
        state.counters["x_floor_memory"] = peakMb / floor.peakMb;
    }
}

} // namespace

BENCHMARK(LibxmlFloor)->Arg(kRss)->Unit(benchmark::kMillisecond);
BENCHMARK(FeedIntoChannel)->Arg(kRss)->Unit(benchmark::kMillisecond);
BENCHMARK(Feedparser)->Arg(kRss)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
BENCHMARK(LibxmlFloor)->Arg(kAtom)->Unit(benchmark::kMillisecond);
BENCHMARK(FeedIntoChannel)->Arg(kAtom)->Unit(benchmark::kMillisecond);
BENCHMARK(Feedparser)->Arg(kAtom)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
