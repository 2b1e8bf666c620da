#include "parse/XmlDocument.h"

#include "platform/Files.h"
#include "platform/FsPath.h"
#include "platform/Text.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

class XmlDocumentTest : public ::testing::Test {
protected:
    // Writes `bytes` to a file of the temporary folder and loads it.
    bool LoadBytes(const std::string& bytes) {
        test::WriteFileBytes(dir / "feed.xml", bytes);
        return doc.LoadFile(PathOf("feed.xml"));
    }
    std::u16string PathOf(const std::string& name) const { return FromFsPath(dir / name); }
    XmlNode Top() const { return doc.RootNode().firstElementChild(); }
    static XmlNode Child(XmlNode parent, std::u16string_view name) {
        for (const XmlNode n : parent.children()) {
            if (n.name() == name) {
                return n;
            }
        }
        return {};
    }
    static std::u16string Attribute(XmlNode node, std::u16string_view name) {
        return node.attribute(name).value_or(u"<none>");
    }

    test::TempDir dir;
    XmlDocument doc;
};

// An element starting with markup reads empty, but leading whitespace is text.
TEST_F(XmlDocumentTest, TextJoinsDescendantTextCdataAndEntitiesButNoComments) {
    ASSERT_TRUE(doc.LoadText(u"<!DOCTYPE rss [<!ENTITY me \"M&#233;\">]>"
                             u"<rss><d>a &amp; <![CDATA[<p>c</p>]]><!--no--><i>&me;</i> "
                             u"&#x4E2D;&#x1F600;</d><a>  <b>x</b></a><c><b>x</b> y</c><e/></rss>",
                             true));
    EXPECT_EQ(Child(Top(), u"d").text(), u"a & <p>c</p>M\u00E9 \u4E2D\U0001F600");
    EXPECT_EQ(Child(Top(), u"a").text(), u"  x");
    EXPECT_EQ(Child(Top(), u"c").text(), u"");
    EXPECT_EQ(Child(Top(), u"e").text(), u"");
}

TEST_F(XmlDocumentTest, AttributeNamesMatchIgnoringCaseAndTheFirstWins) {
    ASSERT_TRUE(doc.LoadText(u"<rss><item qf_wasread=\"yes\" QF_WASREAD=\"no\" "
                             u"href=\"a&amp;b\" Größe=\"1\" x:ID=\"2\"/></rss>",
                             true));
    const XmlNode item = Child(Top(), u"item");
    EXPECT_EQ(Attribute(item, u"QF_WASREAD"), u"yes");
    EXPECT_EQ(Attribute(item, u"HREF"), u"a&b");
    EXPECT_EQ(Attribute(item, u"GRÖSSE"), u"<none>");
    EXPECT_EQ(Attribute(item, u"GRÖßE"), u"1");
    EXPECT_EQ(Attribute(item, u"X:id"), u"2");
    EXPECT_EQ(Attribute(item, u"hre"), u"<none>");
    EXPECT_EQ(Attribute(item, u"type"), u"<none>");
    EXPECT_FALSE(item.nextSibling().attribute(u"x"));
}

TEST_F(XmlDocumentTest, NamesAreQualifiedAndTagSearchMatchesThemExactly) {
    ASSERT_TRUE(doc.LoadText(u"<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" "
                             u"xmlns=\"http://purl.org/rss/1.0/\"><channel><item rdf:about=\"1\"/>"
                             u"</channel><item rdf:about=\"2\"><Item/></item></rdf:RDF>",
                             true));
    EXPECT_EQ(Top().name(), u"rdf:RDF");
    const std::vector<XmlNode> items = doc.ElementsByTagName(u"item");
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(Attribute(items[0], u"rdf:about"), u"1");
    EXPECT_EQ(Attribute(items[1], u"RDF:ABOUT"), u"2");
    EXPECT_EQ(doc.ElementsByTagName(u"rdf:RDF").size(), 1u);
    EXPECT_EQ(doc.ElementsByTagName(u"RDF").size(), 0u);
}

TEST_F(XmlDocumentTest, WalkSkipsPrologueToTopElementAndVisitsEveryKindOfSibling) {
    ASSERT_TRUE(LoadBytes("<?xml version=\"1.0\"?>\n<!-- c --><?style x?>\n<!DOCTYPE rss>\n"
                          "<rss> <a/><!--n--><b/><?A x?><A/></rss>"));
    EXPECT_EQ(doc.RootNode().name(), u"#document");
    EXPECT_EQ(Top().name(), u"rss");
    std::u16string names;
    for (const XmlNode n : Top().children()) {
        names += n.name() + u" ";
    }
    EXPECT_EQ(names, u"a #comment b A A ");
    names.clear();
    for (const XmlNode n : Top().children(u"a")) {
        names += n.name() + n.text() + u" ";
    }
    EXPECT_EQ(names, u"a Ax A ");
    EXPECT_EQ(Top().nextSibling().nextSibling().name(), u"");
}

TEST_F(XmlDocumentTest, LoadTextNotesADoubleQuotedEncodingOnlyAndNeedsAFeedWordWhenAsked) {
    ASSERT_TRUE(
        doc.LoadText(u"<?xml version=\"1.0\" encoding=\"windows-1251\"?><rss>\u0416</rss>", true));
    EXPECT_EQ(doc.declaredCodePage(), 1251);
    EXPECT_EQ(Top().text(), u"\u0416");
    std::u16string encoding;
    EXPECT_FALSE(doc.ReadDeclaredEncoding(encoding));

    XmlDocument single;
    ASSERT_TRUE(single.LoadText(u"<?xml version='1.0' encoding='windows-1251'?><rss/>", true));
    EXPECT_EQ(single.declaredCodePage(), 0);

    // The declaration's encoding names bytes the text no longer has, so it never fails a parse.
    XmlDocument wide;
    ASSERT_TRUE(wide.LoadText(u"<?xml version=\"1.0\" encoding=\"utf-16\"?><rss/>", true));

    // Without a declaration the text needs a feed word only when asked.
    EXPECT_FALSE(doc.LoadText(u"<html><body>Not here</body></html>", true));
    EXPECT_TRUE(doc.LoadText(u"<html><body>Not here</body></html>", false));
    ASSERT_TRUE(doc.LoadText(u"<?xml version=\"1.0\" encoding=\"windows-932\"?><html/>", true));
    EXPECT_FALSE(doc.LoadText(u"<?xml version=\"1.0\" encoding=\"windows-1251\"<rss/>", true));
    // A failed load keeps the previous document and its code page.
    EXPECT_EQ(doc.declaredCodePage(), 932);
    EXPECT_EQ(Top().name(), u"html");
}

TEST_F(XmlDocumentTest, QuickTestRefusesNonFeedFilesAndPassesPagesMentioningFeed) {
    test::WriteFileBytes(dir / "page.html", "<html><body>Server error</body></html>");
    EXPECT_FALSE(XmlDocument::SniffFeedFile(PathOf("page.html")));
    EXPECT_FALSE(LoadBytes("<RSS><title>t</title></RSS>"));
    EXPECT_FALSE(LoadBytes(""));
    EXPECT_FALSE(doc.LoadFile(PathOf("missing.xml")));

    test::WriteFileBytes(dir / "feed.html", "<html><body><p>Our feed moved<br></p></body></html>");
    EXPECT_TRUE(XmlDocument::SniffFeedFile(PathOf("feed.html")));
    EXPECT_FALSE(doc.LoadFile(PathOf("feed.html")));
    EXPECT_TRUE(LoadBytes("<html><body><p>Our feed moved</p></body></html>"));
    EXPECT_TRUE(LoadBytes("<?xml version=\"1.0\"?><anything/>"));
}

TEST_F(XmlDocumentTest, SaveCreatesFoldersAndRoundTripsAnyCharacter) {
    const std::u16string title = u"Caf\u00E9 \u041D\u043E\u0432\u043E\u0441\u0442\u0438 "
                                 u"\u65B0\u805E \U0001F4F0 <&>\"'\t\n";
    ASSERT_TRUE(doc.NewDocument());
    const XmlNode opml = doc.CreateChildElement(doc.RootNode(), u"opml");
    EXPECT_FALSE(doc.CreateChildElement(doc.RootNode(), u"second"));
    const XmlNode outline =
        doc.CreateChildElement(doc.CreateChildElement(opml, u"body"), u"outline");
    ASSERT_TRUE(doc.SetAttribute(outline, u"text", WString(title)));
    // Control characters never make an unreadable file.
    ASSERT_TRUE(doc.SetAttribute(opml, u"title",
                                 WString(std::u16string(u"a\x01"
                                                        u"b\0c",
                                                        5))));
    EXPECT_FALSE(doc.SetAttribute(outline, u"userName", WString()));
    EXPECT_FALSE(doc.SetAttribute(outline, u"bad name", WString(u"x")));
    ASSERT_TRUE(doc.Save(PathOf("a/b/QFChannels.opml")));

    const std::string bytes = test::ReadFileBytes(dir / "a/b/QFChannels.opml");
    EXPECT_TRUE(bytes.starts_with("<?xml version=\"1.0\"?>")) << bytes;
    EXPECT_NE(bytes.find(Utf16ToUtf8(u"\u041D\u043E\u0432")), std::string::npos);
    XmlDocument reread;
    ASSERT_TRUE(reread.LoadFile(PathOf("a/b/QFChannels.opml")));
    const XmlNode read = reread.ElementsByTagName(u"outline").at(0);
    EXPECT_EQ(read.attribute(u"text"), title);
    EXPECT_FALSE(read.attribute(u"userName"));
    std::u16string encoding;
    EXPECT_FALSE(reread.ReadDeclaredEncoding(encoding));
    EXPECT_EQ(reread.RootNode().firstElementChild().attribute(u"title"), u"a\uFFFDb\uFFFDc");
}

TEST_F(XmlDocumentTest, DeclaredEncodingsDecodeTheFileAndAreKeptOnSave) {
    // "Новости" in windows-1251.
    const std::string cp1251 = "\xCD\xEE\xE2\xEE\xF1\xF2\xE8";
    ASSERT_TRUE(LoadBytes("<?xml version='1.0' encoding='windows-1251'?>\n<rss><title>" + cp1251 +
                          "</title><item/></rss>"));
    EXPECT_EQ(Child(Top(), u"title").text(), u"\u041D\u043E\u0432\u043E\u0441\u0442\u0438");
    std::u16string encoding;
    ASSERT_TRUE(doc.ReadDeclaredEncoding(encoding));
    EXPECT_EQ(encoding, u"windows-1251");
    ASSERT_TRUE(doc.SetAttribute(Child(Top(), u"item"), u"qf_wasRead", WString(u"yes")));
    ASSERT_TRUE(doc.Save(PathOf("feed.xml")));

    const std::string saved = test::ReadFileBytes(dir / "feed.xml");
    EXPECT_NE(saved.find("encoding=\"windows-1251\""), std::string::npos) << saved;
    EXPECT_NE(saved.find(cp1251), std::string::npos);
    EXPECT_NE(saved.find("qf_wasRead=\"yes\""), std::string::npos);

    ASSERT_TRUE(LoadBytes("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><rss>caf\xE9</rss>"));
    EXPECT_EQ(Top().text(), u"caf\u00E9");
    // "ニュース" in Shift_JIS.
    ASSERT_TRUE(LoadBytes("<?xml version=\"1.0\" encoding=\"Shift_JIS\"?>"
                          "<rss>\x83\x6A\x83\x85\x81\x5B\x83\x58</rss>"));
    EXPECT_EQ(Top().text(), u"\u30CB\u30E5\u30FC\u30B9");
    ASSERT_TRUE(doc.ReadDeclaredEncoding(encoding));
    EXPECT_EQ(encoding, u"Shift_JIS");
}

TEST_F(XmlDocumentTest, ExternalEntitiesAndDtdsAreNeverRead) {
    test::WriteFileBytes(dir / "secret.txt", "MARKER-7f3a");
    test::WriteFileBytes(dir / "evil.dtd", "<!ENTITY leak \"MARKER-7f3a\">");
    const std::string secret = "file://" + (dir / "secret.txt").string();
    const std::string dtd = "file://" + (dir / "evil.dtd").string();
    const std::string documents[] = {
        "<!DOCTYPE rss [<!ENTITY x SYSTEM \"" + secret + "\">]><rss><t>a&x;b</t></rss>",
        "<!DOCTYPE rss [<!ENTITY % p SYSTEM \"" + dtd + "\"> %p;]><rss><t>&leak;</t></rss>",
        "<!DOCTYPE rss SYSTEM \"" + dtd + "\"><rss><t>&leak;</t></rss>",
        "<!DOCTYPE rss [<!ENTITY x SYSTEM \"" + secret + "\">]><rss><t a=\"&x;\"/></rss>",
    };
    for (const std::string& bytes : documents) {
        if (LoadBytes(bytes)) {
            EXPECT_EQ(Top().text().find(u"MARKER"), std::u16string::npos) << bytes;
            EXPECT_EQ(Attribute(Child(Top(), u"t"), u"a").find(u"MARKER"), std::u16string::npos);
            ASSERT_TRUE(doc.Save(PathOf("saved.xml")));
            EXPECT_EQ(test::ReadFileBytes(dir / "saved.xml").find("MARKER"), std::string::npos);
        }
        if (doc.LoadText(Utf8ToUtf16(bytes), true)) {
            EXPECT_EQ(Top().text().find(u"MARKER"), std::u16string::npos) << bytes;
        }
    }
}

std::string Laughs(int levels, const std::string& use) {
    std::string doc = "<!DOCTYPE rss [<!ENTITY l0 \"lol\">";
    for (int i = 1; i <= levels; ++i) {
        doc += "<!ENTITY l" + std::to_string(i) + " \"";
        for (int k = 0; k < 10; ++k) {
            doc += "&l" + std::to_string(i - 1) + ";";
        }
        doc += "\">";
    }
    return doc + "]><rss>" + use + "</rss>";
}

TEST_F(XmlDocumentTest, EntityExpansionStaysBounded) {
    EXPECT_FALSE(LoadBytes(Laughs(9, "&l9;")));
    EXPECT_FALSE(LoadBytes(Laughs(9, "<t a=\"&l9;\"/>")));

    // Within the parser's own limits, but reading the text would build gigabytes.
    const std::string big(100000, 'A');
    std::string refs;
    for (int i = 0; i < 20000; ++i) {
        refs += "&a;";
    }
    const std::string quadratic = "<!DOCTYPE rss [<!ENTITY a \"" + big + "\">]><rss>";
    EXPECT_FALSE(LoadBytes(quadratic + refs + "</rss>"));
    EXPECT_FALSE(LoadBytes(quadratic + "<t a=\"" + refs + "\"/></rss>"));

    // Modest expansion is ordinary text.
    ASSERT_TRUE(LoadBytes(Laughs(1, "<t a=\"&l1;\">&l1;&l1;</t>")));
    EXPECT_EQ(Child(Top(), u"t").text().size(), 60u);
    EXPECT_EQ(Attribute(Child(Top(), u"t"), u"a").size(), 30u);
}

TEST_F(XmlDocumentTest, HugeTextIsReadWhole) {
    // An entity in every line makes the parser build the text node piece by piece, which is
    // where a size limit would cut it.
    const std::string line = std::string(97, 'x') + "&amp;\n";
    std::string text;
    text.reserve(line.size() * 110000);
    for (int i = 0; i < 110000; ++i) {
        text += line;
    }
    ASSERT_TRUE(LoadBytes("<rss><description>" + text + "</description></rss>"));
    const std::u16string read = Child(Top(), u"description").text();
    EXPECT_EQ(read.size(), 99u * 110000); // over ten million characters
    EXPECT_EQ(read.substr(read.size() - 3), u"x&\n");
}

} // namespace
} // namespace qf
