#include "support/RunProgram.h"

#include "support/ChildProcess.h"

namespace qf::test {

ProgramResult RunProgram(const std::string& path, const std::vector<std::string>& arguments) {
    return ChildProcess(path, arguments).Wait();
}

} // namespace qf::test
