#include "writing/FileOutput.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>

namespace kconfig {

namespace {

using Path = std::filesystem::path;

// The attempt to write one output: tells failures under the name that the user gave it.
class Output {
 public:
  Output(std::string const& name, std::string_view text) : m_name(name), m_text(text) {}

  void write() const;

 private:
  [[noreturn]] void fail(int error) const { throw OutputError(m_name, std::strerror(error)); }
  Path target(bool& isOpenFile) const;
  void writeThrough(Path const& path) const;
  void replace(Path const& path, struct stat const* former) const;
  void fill(int file) const;
  void finish(int file) const;

  std::string const& m_name;
  std::string_view m_text;
};

// What links lead to, whether it is there or not. The system's links to files that a process has open lead to that very
// file, which may have no name any more.
Path Output::target(bool& isOpenFile) const {
  constexpr int mostLinks = 40;
  Path path = m_name;
  std::error_code error;
  for (int links = 0; std::filesystem::is_symlink(path, error); ++links) {
    if (links == mostLinks) {
      fail(ELOOP);
    }
    Path const folder = std::filesystem::canonical(path.has_parent_path() ? path.parent_path() : ".", error);
    isOpenFile = folder.native().compare(0, 6, "/proc/") == 0;
    if (isOpenFile) {
      break;
    }
    path = folder / std::filesystem::read_symlink(path, error);
    if (error) {
      fail(error.value());
    }
  }
  return path;
}

void Output::write() const {
  bool isOpenFile = false;
  Path const path = target(isOpenFile);
  struct stat former {};
  bool const exists = stat(path.c_str(), &former) == 0;
  if (!exists && errno != ENOENT) {
    fail(errno);
  }
  if (exists && (isOpenFile || !S_ISREG(former.st_mode))) {
    writeThrough(path);
  } else {
    replace(path, exists ? &former : nullptr);
  }
}

void Output::writeThrough(Path const& path) const {
  std::cout.flush();  // which may be the same file
  int const file = open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | O_NOCTTY);
  if (file < 0) {
    fail(errno);
  }
  try {
    fill(file);
  } catch (...) {
    close(file);
    throw;
  }
  if (close(file) != 0) {
    fail(errno);
  }
}

// The permissions of a new file, as the process is told to give them.
mode_t newFileMode() {
  mode_t const mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

void Output::replace(Path const& path, struct stat const* former) const {
  if (former != nullptr && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) {
    fail(errno);
  }
  std::string temporary = (path.parent_path() / ".tessel-kconfig-XXXXXX").native();
  int const file = mkostemp(temporary.data(), O_CLOEXEC);
  if (file < 0 && former != nullptr) {
    throw OutputError(m_name, std::string("the new one can't be made beside it: ") + std::strerror(errno));
  }
  if (file < 0) {
    fail(errno);
  }
  try {
    // The owner first, since a change of it takes permissions away. Not everybody may give files away.
    bool const isOwned =
        former == nullptr || fchown(file, former->st_uid, former->st_gid) == 0 || former->st_uid == geteuid();
    mode_t const mode = former == nullptr ? newFileMode() : former->st_mode & (isOwned ? 07777U : 0777U);
    if (fchmod(file, mode) != 0) {
      fail(errno);
    }
    fill(file);
    finish(file);
  } catch (...) {
    close(file);
    unlink(temporary.c_str());
    throw;
  }
  if (close(file) != 0 || rename(temporary.c_str(), path.c_str()) != 0) {
    int const error = errno;
    unlink(temporary.c_str());
    fail(error);
  }
}

void Output::fill(int file) const {
  std::string_view rest = m_text;
  while (!rest.empty()) {
    ssize_t const written = ::write(file, rest.data(), rest.size());
    if (written < 0 && errno != EINTR) {
      fail(errno);
    }
    rest.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
  }
}

// A disk can turn out to be full as late as this; some file systems have nothing to do here and say so.
void Output::finish(int file) const {
  if (fsync(file) != 0 && errno != EINVAL && errno != ENOTSUP) {
    fail(errno);
  }
}

}  // namespace

void writeFile(std::string const& name, std::string_view text) { Output(name, text).write(); }

}  // namespace kconfig
