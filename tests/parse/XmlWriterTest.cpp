#include "parse/XmlWriter.h"

#include "parse/XmlDocument.h"
#include "platform/Files.h"
#include "platform/FsPath.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

// The writer stands in for building a tree and saving it, so both must give the same bytes,
// awkward values included.
TEST(XmlWriter, WritesTheBytesASavedTreeWouldHave) {
    const std::u16string awkward = std::u16string(u"tab\tline\nreturn\r nul") + char16_t(0) +
                                   u" bell\a <&>\"' é € 😀 lone" + char16_t(0xD800) + u" end" +
                                   char16_t(0xFFFF);
    XmlDocument document;
    ASSERT_TRUE(document.NewDocument());
    const XmlNode root = document.CreateChildElement(document.RootNode(), u"opml");
    document.SetAttribute(root, u"version", WString(u"1.0"));
    const XmlNode empty = document.CreateChildElement(root, u"head");
    document.SetAttribute(empty, u"skipped", WString());
    const XmlNode body = document.CreateChildElement(root, u"body");
    document.SetAttribute(document.CreateChildElement(body, u"outline"), u"text", WString(awkward));
    document.SetAttribute(document.CreateChildElement(body, u"outline"), u"ID", WString(u"-12"));
    const test::TempDir dir;
    ASSERT_TRUE(document.Save(FromFsPath(dir / "tree.xml")));

    XmlWriter writer;
    writer.StartElement(u"opml");
    writer.Attribute(u"version", u"1.0");
    writer.StartElement(u"head");
    writer.Attribute(u"skipped", WString());
    writer.EndElement();
    writer.StartElement(u"body");
    writer.StartElement(u"outline");
    writer.Attribute(u"text", std::u16string_view(awkward));
    writer.EndElement();
    writer.StartElement(u"outline");
    writer.Attribute(u"ID", -12);
    EXPECT_EQ(writer.Finish(), test::ReadFileBytes(dir / "tree.xml"));
}

// Files for other programs: a line per tag, an element kept open by EndAttributes gets its own
// end tag even when empty, and text stays on the line of its element.
TEST(XmlWriter, IndentedLayoutPutsEveryTagOnItsOwnLine) {
    XmlWriter writer(XmlWriter::Layout::kIndented);
    writer.StartElement(u"opml");
    writer.StartElement(u"title");
    writer.Text(u"a<&>\"\tb");
    writer.EndElement();
    writer.StartElement(u"body");
    writer.EndAttributes();
    writer.StartElement(u"outline");
    writer.Attribute(u"text", u"x");
    writer.EndAttributes();
    writer.EndElement();
    writer.StartElement(u"outline");
    EXPECT_EQ(writer.Finish(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                               "<opml>\n"
                               "  <title>a&lt;&amp;&gt;\"\tb</title>\n"
                               "  <body>\n"
                               "    <outline text=\"x\">\n"
                               "    </outline>\n"
                               "    <outline/>\n"
                               "  </body>\n"
                               "</opml>\n");
}

} // namespace
} // namespace qf
