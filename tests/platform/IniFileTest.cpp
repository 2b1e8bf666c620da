#include "platform/IniFile.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

// The texts on the right are what Qt 6's QSettings writes for the values on the left.
TEST(IniFile, EscapesValuesAsQSettingsDoes) {
    EXPECT_EQ(IniFile::EscapeValue(u"\\"), "\\\\");
    EXPECT_EQ(IniFile::EscapeValue(u"\\Storage Card"), "\\\\Storage Card");
    EXPECT_EQ(IniFile::EscapeValue(u"a,b"), "\"a,b\"");
    EXPECT_EQ(IniFile::EscapeValue(u"x;y"), "\"x;y\"");
    EXPECT_EQ(IniFile::EscapeValue(u"x=y"), "\"x=y\"");
    EXPECT_EQ(IniFile::EscapeValue(u" lead"), "\" lead\"");
    EXPECT_EQ(IniFile::EscapeValue(u"tr "), "\"tr \"");
    EXPECT_EQ(IniFile::EscapeValue(u"@x"), "@@x");
    EXPECT_EQ(IniFile::EscapeValue(u"\"q\"\ttab\nnl"), "\\\"q\\\"\\ttab\\nnl");
    EXPECT_EQ(IniFile::EscapeValue(u"a\x01"
                                   u"b"),
              "a\\x1\\x62");
    EXPECT_EQ(IniFile::EscapeValue(u"K\u00fcrbis \u20ac \U0001F600"),
              "K\xc3\xbcrbis \xe2\x82\xac \xf0\x9f\x98\x80");
    EXPECT_EQ(IniFile::EscapeValue(u""), "");
}

TEST(IniFile, ReadsHandWrittenFilesAsQSettingsDoes) {
    const IniFile file = IniFile::Parse("\xEF\xBB\xBF; comment\n"
                                        "[Options]\r\n"
                                        "  TextSize = 4 ; trailing comment\r\n"
                                        "FitToScreen=5\n"
                                        "FitToScreen=6\n"
                                        "StorageVolume = \"\\\\Card ; x\" \n"
                                        "A=one\\\ncontinued\n"
                                        "B=x\\ty\\q\\101z\\x41\n"
                                        "C=\"multi\nline\"\n"
                                        "D=  spaces  \n"
                                        "E\n"
                                        "[Other]\n"
                                        "TextSize=1\n"
                                        "[Options]\n"
                                        "H=2");
    EXPECT_TRUE(file.HasSection("Options"));
    EXPECT_FALSE(file.HasSection("Window"));
    EXPECT_EQ(file.Value("Options", "TextSize"), u"4");
    EXPECT_EQ(file.Value("Options", "FitToScreen"), u"6");
    EXPECT_EQ(file.Value("Options", "StorageVolume"), u"\\Card ; x");
    EXPECT_EQ(file.Value("Options", "A"), u"onecontinued");
    EXPECT_EQ(file.Value("Options", "B"), u"x\tyAzA");
    EXPECT_EQ(file.Value("Options", "C"), u"multi\nline");
    EXPECT_EQ(file.Value("Options", "D"), u"spaces");
    EXPECT_EQ(file.Value("Options", "E"), std::nullopt);
    EXPECT_EQ(file.Value("Options", "H"), u"2");
    EXPECT_EQ(file.Value("Other", "TextSize"), u"1");
}

TEST(IniFile, SettingValuesChangesOnlyTheirOwnLinesEvenAfterAnUnendedLastLine) {
    IniFile file = IniFile::Parse("; kept\n"
                                  "[Options]\n"
                                  "TextSize=1\n"
                                  "Custom=x\n"
                                  "TextSize=3\n"
                                  "\n"
                                  "[Window]\n"
                                  "geometry=@ByteArray(\\x1\\x2xy)\n");
    file.SetValue("Options", "TextSize", u"4");
    file.SetValue("Options", "StorageVolume", u"\\");
    file.SetValue("Fresh", "Key", u"a,b");

    EXPECT_EQ(file.Text(), "; kept\n"
                           "[Options]\n"
                           "TextSize=4\n"
                           "Custom=x\n"
                           "StorageVolume=\\\\\n"
                           "\n"
                           "[Window]\n"
                           "geometry=@ByteArray(\\x1\\x2xy)\n"
                           "\n"
                           "[Fresh]\n"
                           "Key=\"a,b\"\n");

    // A value added after a last line without a line end stays its own; that it reads back is
    // the settings fuzzer's to check, the line before must stay as it was.
    IniFile unended = IniFile::Parse("[Options]\nA=1");
    unended.SetValue("Options", "B", u"2");
    EXPECT_EQ(unended.Text(), "[Options]\nA=1\nB=2\n");
    IniFile empty;
    empty.SetValue("Options", "A", u"1");
    EXPECT_EQ(empty.Text(), "[Options]\nA=1\n");

    for (const std::string_view last :
         {"A=\"open quote", "A=dangling\\", "A=continued\\\n", "A=continued\\\r"}) {
        IniFile cut = IniFile::Parse("[Options]\n" + std::string(last));
        const auto before = cut.Value("Options", "A");
        cut.SetValue("Options", "B", u"2");
        EXPECT_EQ(IniFile::Parse(cut.Text()).Value("Options", "A"), before) << last;
    }
}

} // namespace
} // namespace qf
