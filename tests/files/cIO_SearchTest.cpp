#include <filesystem>

#include "Folders.h"
#include "files/cIO_Internal.h"

namespace trellis {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

TEST(cIO_MatchWildcard, Table) {
    constexpr struct {
        const char* Wildcard;
        const char* Name;
        bool Match;
    } cases[] = {
        {"*", ".hidden", true},
        {"?", "", false},
        {"?", "ab", false},
        {"*.bmp", "a.BMP", true},
        {"*.bmp", ".bmp", true},
        {"a*b*c", "aXbYc", true},
        {"a*b*c", "aXbYcZ", false},
        {"a*bc", "abcbc", true},
        {"a*?", "a", false},
        {"[a]*", "[a]", true},
        {"a**", "a", true},
        // Retrying every star would take longer than the test may.
        {"*a*a*a*a*a*a*a*a*a*a*a*ab", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(cIO_MatchWildcard(c.Wildcard, c.Name), c.Match) << c.Wildcard << " on " << c.Name;
    }
}

class cIO_Search : public Folders {
protected:
    cIO_Search() {
        for (const char* file : {"t/a.dds", "t/b.Bmp", "t/sub/c.dds", "t/sub/deep/d.txt"}) {
            Put(Read(file));
        }
        for (const char* file : {"t/B.bmp", "t/n.dds", "t/sub/deep/d.txt", "t/new/e.dds"}) {
            Put(Write(file));
        }
    }
    cList<cStr> m_Out;
};

TEST_F(cIO_Search, WriteFolderIsMergedUnderTheNamesOfTheReadFolder) {
    const struct {
        const char* Pattern;
        Strings Alone, Merged, Folders;
    } cases[] = {
        {"t",
         {"read/t/a.dds", "read/t/b.Bmp"},
         {"read/t/a.dds", "read/t/b.Bmp", "read/t/n.dds"},
         {"read/t/sub", "read/t/new"}},
        {"t\\*.DDS", {"read/t/a.dds"}, {"read/t/a.dds", "read/t/n.dds"}, {}},
        {"t/n*", {}, {"read/t/n.dds"}, {"read/t/new"}},
        {"t/new/", {}, {"read/t/new/e.dds"}, {}}, // is in the write folder only
        {"t/a.dds", {}, {}, {}},                  // a file is no folder
        {"gone", {}, {}, {}},
        {"http://t", {}, {}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Pattern);
        m_Out.Add("old");
        cIO::SearchFiles(c.Pattern, &m_Out, false);
        EXPECT_EQ(Names(m_Out), c.Alone);
        cIO::SearchItems(c.Pattern, &m_Out, cIO::Items::Files);
        EXPECT_EQ(Names(m_Out), c.Alone);
        cIO::SearchFiles(c.Pattern, &m_Out, true);
        EXPECT_EQ(Names(m_Out), c.Merged);
        cIO::SearchFolders(c.Pattern, &m_Out);
        EXPECT_EQ(Names(m_Out), c.Folders);
    }
}

TEST_F(cIO_Search, RecursiveSearchTakesFilesThenFolders) {
    const Strings all = {"read/t/a.dds",     "read/t/b.Bmp",          "read/t/n.dds",
                         "read/t/sub/c.dds", "read/t/sub/deep/d.txt", "read/t/new/e.dds"};
    cIO::SearchFilesRecursive("t", &m_Out);
    EXPECT_EQ(Names(m_Out), all);
    cIO::SearchFilesRecursive("t", &m_Out, nullptr);
    EXPECT_EQ(Names(m_Out), all);
    cIO::SearchFilesRecursive("t", &m_Out, "BMP;txt");
    EXPECT_EQ(Names(m_Out), (Strings{"read/t/b.Bmp", "read/t/sub/deep/d.txt"}));
    cIO::SearchFilesRecursive("t/s*", &m_Out);
    EXPECT_EQ(Names(m_Out), (Strings{"read/t/sub/c.dds", "read/t/sub/deep/d.txt"}));
}

TEST_F(cIO_Search, HostileNamesEndTheWalkAndStayInTheirFolder) {
    fs::remove_all(Write("t"));
    fs::remove_all(Read("t"));
    Put(Read("t/*/in star"));
    Put(Read("t/?"));
    Put(Read("t/back\\slash")); // could not be told to any operation
    for (const char* link : {"t/loop1", "t/loop2", "t/*/up"}) {
        fs::create_directory_symlink(Read("t"), Read(link));
    }
    fs::create_symlink("nowhere", Read("t/dangling"));
    cIO::SearchFilesRecursive("t", &m_Out);
    EXPECT_EQ(Names(m_Out), (Strings{"read/t/?", "read/t/*/in star"}));
}

} // namespace
} // namespace trellis
