// What the program writes: to files of every kind, and what it says where it can't, or where the command line makes no
// sense.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
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
  add("old", "something longer");
  fs::permissions(at("old"), fs::perms(0604));
  bool const isOwned = chown(at("old").c_str(), 1, 2) == 0;  // only the superuser may
  std::ifstream reader(at("old"));
  fs::create_directory(at("inner"));
  fs::create_symlink("../old", at("inner/link"));
  fs::create_symlink("inner/link", at("far"));
  fs::create_symlink("inner/later", at("dangling"));
  fs::create_symlink("loop", at("loop"));
  for (auto const& [name, target, mode] : std::vector<std::tuple<char const*, char const*, mode_t>>{
           {"made", "made", 0640}, {"far", "old", 0604}, {"dangling", "inner/later", 0640}}) {
    writeFile(at(name), "new");
    struct stat status {};
    ASSERT_EQ(lstat(at(target).c_str(), &status), 0) << name;
    EXPECT_EQ(status.st_mode, S_IFREG | mode) << name;
    EXPECT_TRUE(std::string("far") != name || !isOwned || (status.st_uid == 1 && status.st_gid == 2));
    EXPECT_EQ(contentOf(at(target)), "new");
    EXPECT_EQ(fs::is_symlink(at(name)), std::string(name) != target);
  }
  umask(mask);
  std::string former;
  EXPECT_TRUE(std::getline(reader, former)) << "who reads the old one keeps it";
  std::size_t const files = count();
  for (auto const& [name, reason] : std::map<char const*, char const*>{{"inner", "Is a directory"},
                                                                       {"none/file", "No such file or directory"},
                                                                       {"old/file", "Not a directory"},
                                                                       {"loop", "Too many levels of symbolic links"}}) {
    EXPECT_EQ(refusal(at(name)), "can't write " + at(name).string() + ": " + reason);
  }
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
           {"set A -d" + tree, 2, "tessel-kconfig: 'A' is not of the form SYMBOL=VALUE\n"},
           {"show AB" + tree, 1, "there is no symbol 'AB'; did you mean 'A'?\n"},
           {"check" + tree, 0, ""},
           {"summary -k " + at("Kconfig").string() + " -p gone", 1, "gone: error: the profile can't be read"},
           {"tree -k " + add("Broken", "config A\n\tbool\n\tdepends A\n"), 1,
            "Broken:3: error: expected 'on' behind 'd"},
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
