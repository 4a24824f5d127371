// What the program writes: to files of every kind, and what it says where it can't, or where the command line makes no
// sense.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "writing/FileOutput.hpp"

namespace kconfig::test {
namespace {

namespace fs = std::filesystem;

std::string contentOf(fs::path const& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return text.str();
}

class Output : public testing::Test {
 protected:
  Output() { fs::create_directories(m_folder); }
  ~Output() override { fs::remove_all(m_folder); }

  fs::path at(std::string const& name) const { return m_folder / name; }
  std::string add(std::string const& name, std::string const& text) const {
    std::ofstream(at(name)) << text;
    return at(name);
  }
  std::size_t count() const { return static_cast<std::size_t>(std::distance(fs::directory_iterator(m_folder), {})); }
  // What is raised for name, empty for nothing.
  std::string refusal(std::string const& name) const {
    try {
      writeFile(name, "new");
    } catch (OutputError const& error) {
      return error.what();
    }
    return "";
  }

  fs::path m_folder = fs::path(testing::TempDir()) / ("kconfig-output" + std::to_string(getpid()));
};

TEST_F(Output, ReplacesRegularFilesOnlyAndFollowsLinks) {
  mode_t const mask = umask(027);
  writeFile(at("made"), "new");
  umask(mask);
  add("old", "something longer");
  fs::permissions(at("old"), fs::perms(0604));
  bool const isOwned = chown(at("old").c_str(), 1, 2) == 0;  // only the superuser may
  int const reader = open(at("old").c_str(), O_RDONLY);
  fs::create_directory(at("inner"));
  fs::create_symlink("../old", at("inner/link"));
  fs::create_symlink("inner/link", at("far"));
  fs::create_symlink("inner/later", at("dangling"));
  fs::create_symlink("loop", at("loop"));
  std::size_t const files = count();

  writeFile(at("far"), "new");
  writeFile(at("dangling"), "");
  for (auto const& [name, text, mode] : std::vector<std::tuple<char const*, char const*, mode_t>>{
           {"made", "new", 0640}, {"old", "new", 0604}, {"inner/later", "", 0666 & ~mask}}) {
    struct stat status {};
    ASSERT_EQ(lstat(at(name).c_str(), &status), 0) << name;
    EXPECT_EQ(status.st_mode, S_IFREG | mode) << name;
    EXPECT_EQ(contentOf(at(name)), text);
    EXPECT_TRUE(std::string(name) != "old" || !isOwned || (status.st_uid == 1 && status.st_gid == 2));
  }
  char former[10] = {};
  EXPECT_EQ(read(reader, former, 9), 9) << "who reads the old one keeps it";
  EXPECT_STREQ(former, "something");
  close(reader);
  for (char const* const name : {"far", "inner/link", "dangling", "loop"}) {
    EXPECT_TRUE(fs::is_symlink(at(name))) << name;
  }

  EXPECT_THAT(refusal(at("inner")), testing::EndsWith("inner: Is a directory"));
  EXPECT_THAT(refusal(at("none/file")), testing::EndsWith("none/file: No such file or directory"));
  EXPECT_THAT(refusal(at("old/file")), testing::EndsWith("old/file: Not a directory"));
  EXPECT_THAT(refusal(at("loop")), testing::EndsWith("loop: Too many levels of symbolic links"));
  EXPECT_EQ(count(), files) << "nothing is left beside them";
}

TEST_F(Output, WritesThroughWhatIsNoRegularFile) {
  EXPECT_EQ(refusal("/dev/full"), "can't write /dev/full: No space left on device");
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
  ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
  int const reader = open(at("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  fs::create_symlink("pipe", at("link"));
  writeFile(at("link"), "new");
  char read[8] = {};
  EXPECT_EQ(::read(reader, read, sizeof read), 3);
  EXPECT_STREQ(read, "new");
  close(reader);
  EXPECT_TRUE(fs::is_fifo(at("pipe")));
  // What a process has open is that file, also where another one, or none, has its name.
  int const opened = open(add("opened", "old,").c_str(), O_RDWR);
  fs::create_symlink("/proc/self/fd/" + std::to_string(opened), at("descriptor"));
  fs::rename(at("opened"), at("renamed"));
  writeFile(at("descriptor"), "new");
  EXPECT_EQ(contentOf(at("renamed")), "old,new");
  close(opened);
}

TEST_F(Output, ThatFailsAndCommandLinesThatMakeNoSenseEndInASentenceAndACode) {
  std::string const tree =
      " -k " + add("Kconfig", "config A\n\tbool \"a\"\nconfig B\n\tbool \"b\"\n\tdepends on A\n") + " -n";
  struct Row {
    std::string arguments;
    int code;
    char const* told;
  };
  std::string const out = " -o " + at("out").string();
  for (Row const& row : std::vector<Row>{
           {"chekc", 2, "tessel-kconfig: there is no command 'chekc'; did you mean 'check'?\n"},
           {"frobnicate", 2, "there is no command 'frobnicate'; the commands are check, generate, "},
           {"generate" + tree, 2, "--output or --header is required\n"},
           {"set A=y" + tree, 2, "--dry-run or --output is required\n"},
           {"generate --outptu x", 2, "--outptu"},
           {"--version", 0, ""},
           {"--version >/dev/full", 3, "tessel-kconfig: can't write to standard output: No space left on device\n"},
           {"tree" + tree + " >/dev/full", 3, "can't write to standard output: No space left on device\n"},
           {"generate" + tree + " -o /dev/full", 3, "tessel-kconfig: can't write /dev/full: No space left on device\n"},
           {"generate" + tree + " -H /dev/full" + out, 3, "can't write /dev/full"},
           {"set B=y" + tree + out, 1, "the command line: error: 'B=y' comes to n: it needs 'A'\n"},
           {"set B=y -d -q" + tree, 1, "it needs 'A'"},
           {"set B=y A=y" + tree + out, 0, ""},
           {"show AB" + tree, 1, "there is no symbol 'AB'; did you mean 'A'?\n"},
       }) {
    std::string const line = KCONFIG_PROGRAM " " + row.arguments;
    std::string const silent = row.arguments.find('>') == std::string::npos ? " >/dev/null" : "";
    int const status = std::system((line + silent + " 2>" + at("errors").string()).c_str());
    EXPECT_EQ(WEXITSTATUS(status), row.code) << line;
    EXPECT_THAT(contentOf(at("errors")), testing::HasSubstr(row.told)) << line;
    EXPECT_TRUE(row.code != 0 || contentOf(at("errors")).empty()) << contentOf(at("errors"));
  }
  EXPECT_THAT(contentOf(at("out")), testing::HasSubstr("CONFIG_B=y\n"));
}

}  // namespace
}  // namespace kconfig::test
