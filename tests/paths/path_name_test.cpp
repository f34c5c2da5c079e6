// CZelPathName keeps a path and its four parts in step.
#include <gtest/gtest.h>
#include <zel/paths.h>

#include <string>

namespace {

std::u16string Parts(const CZelPathName& p) {
    return std::u16string(p.drive) + u"|" + p.dir + u"|" + p.fname + u"|" + p.ext + u"|" + p.full;
}

}  // namespace

TEST(PathName, SetPathAndSetPartsKeepThePartsInStep) {
    CZelPathName p(u"c:\\dir\\sub\\name.tar.gz");
    EXPECT_EQ(u"c:|\\dir\\sub\\|name.tar|.gz|c:\\dir\\sub\\name.tar.gz", Parts(p));
    p.SetPath(nullptr);
    EXPECT_EQ(u"c:\\dir\\sub\\name.tar.gz", std::u16string(p.full));
    p.SetParts(nullptr, nullptr, u"", u"");
    EXPECT_EQ(u"c:|\\dir\\sub\\|||c:\\dir\\sub\\", Parts(p));
    p.SetParts(u"d", u"x", u"f", u"txt");
    EXPECT_EQ(u"d:|x\\|f|.txt|d:x\\f.txt", Parts(p));
    p.SetParts(u"", u"", u"", u"");
    EXPECT_EQ(u"||||", Parts(p));
    // Cut to the 259 characters of the path, then to the 255 of the name part.
    p.SetPath(std::u16string(300, u'n').c_str());
    EXPECT_EQ(std::u16string(255, u'n'), p.full);
}

TEST(PathName, DirectoryKeepsItsSeparatorWithinTheBuffer) {
    const CZelPathName p(u"c:\\dir\\name.txt");
    WCHAR buffer[8];
    p.GetDirectory(buffer, 8);
    EXPECT_EQ(std::u16string(u"c:\\dir\\"), buffer);
    p.GetDirectory(buffer, 4);
    EXPECT_EQ(std::u16string(u"c:\\"), buffer);
    p.GetDirectory(buffer, 0);
    EXPECT_EQ(std::u16string(u"c:\\"), buffer);  // a size of 0 writes nothing
}
