#include "model/safe_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace ovaro {

namespace {

namespace fs = std::filesystem;

std::string describe(const std::string& what, const std::string& path, int err) {
  return what + " " + path + ": " + std::strerror(err);
}

// Writes all of `data`, comparing each write's count with the count asked; a shortfall is a
// failure (a full disk shows itself that way).
bool writeChecked(int fd, std::string_view data, int& err) {
  while (!data.empty()) {
    const ssize_t n = ::write(fd, data.data(), data.size());
    if (n < 0 && errno == EINTR) continue;
    if (n != static_cast<ssize_t>(data.size())) {
      err = n < 0 ? errno : ENOSPC;
      return false;
    }
    data.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

}  // namespace

bool readWholeFile(const std::string& path, std::string& out) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::ostringstream ss;
  ss << in.rdbuf();
  if (in.bad()) return false;
  out = ss.str();
  return true;
}

bool replaceFileContents(const std::string& path, std::string_view content, bool keepOldTail,
                         std::string* error) {
  auto fail = [error](std::string message) {
    if (error != nullptr) *error = std::move(message);
    return false;
  };
  if (path.empty()) return fail("no file name given");

  std::error_code ec;
  fs::path target(path);
  if (fs::is_symlink(target, ec)) {
    const fs::path resolved = fs::canonical(target, ec);
    if (!ec) target = resolved;
  }

  std::string tail;
  mode_t mode = 0666;
  bool useOldMode = false;
  struct stat st {};
  if (::stat(target.c_str(), &st) == 0) {
    if (S_ISDIR(st.st_mode)) return fail(path + " is a directory");
    mode = st.st_mode & 07777;
    useOldMode = true;
    std::string old;
    if (keepOldTail && readWholeFile(target.string(), old) && old.size() > content.size())
      tail = old.substr(content.size());
  }

  const fs::path dir = target.has_parent_path() ? target.parent_path() : fs::path(".");
  std::random_device rd;
  std::string tmp;
  int fd = -1;
  for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
    std::ostringstream name;
    name << '.' << target.filename().string() << ".tmp-" << ::getpid() << '-' << std::hex << rd();
    tmp = (dir / name.str()).string();
    fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0 && errno != EEXIST)
      return fail(describe("cannot create a file beside", path, errno));
  }
  if (fd < 0) return fail("cannot create a temporary file beside " + path);

  int err = 0;
  bool ok = writeChecked(fd, content, err) && writeChecked(fd, tail, err);
  if (ok && useOldMode && ::fchmod(fd, mode) != 0) {
    err = errno;
    ok = false;
  }
  if (ok && ::fsync(fd) != 0) {
    err = errno;
    ok = false;
  }
  if (::close(fd) != 0 && ok) {
    err = errno;
    ok = false;
  }
  if (ok && ::rename(tmp.c_str(), target.c_str()) != 0) {
    err = errno;
    ok = false;
  }
  if (!ok) {
    ::unlink(tmp.c_str());
    return fail(describe("cannot write", path, err));
  }
  // Make the rename itself durable; a failure here no longer endangers either file.
  if (const int dfd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); dfd >= 0) {
    ::fsync(dfd);
    ::close(dfd);
  }
  return true;
}

}  // namespace ovaro
