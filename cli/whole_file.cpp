#include "cli/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "cli/output.h"

namespace zelk::cli {
namespace {

/// Returns 0, or the `errno` of what failed; so do those below.
int write_and_close(int descriptor, std::string_view text) {
  if (descriptor < 0) return errno;
  int const reason = write_all(descriptor, text) ? 0 : errno;
  return close(descriptor) != 0 && reason == 0 ? errno : reason;
}

int write_in_place(std::string const& name, std::string_view text) {
  return write_and_close(open(name.c_str(), O_WRONLY | O_TRUNC | O_NOCTTY | O_CLOEXEC), text);
}

/// The file that a name leads to by symbolic links, also if there is none yet.
std::filesystem::path target_of(std::filesystem::path name) {
  for (int links = 0; links < 40 && is_symlink(name); ++links)
    name = name.parent_path() / read_symlink(name);
  return name;
}

/// Gives a file what the one had whose place it takes, or, without one, what a new file gets.
void inherit(int descriptor, struct stat const* old) {
  if (old == nullptr) {
    mode_t const mask = umask(077);
    umask(mask);
    fchmod(descriptor, 0666 & ~mask);
  } else {
    bool const has_owner = fchown(descriptor, old->st_uid, old->st_gid) == 0;
    fchmod(descriptor, old->st_mode & (has_owner ? 07777 : 0777));
  }
}

int replace(std::string const& name, struct stat const* old, std::string_view text) {
  auto const target = target_of(name);
  std::string beside = target.parent_path() / ".zelk-XXXXXX";
  SignalsBlocked const blocked;  // or the new file could be left
  int const descriptor = mkostemp(beside.data(), O_CLOEXEC);
  if (descriptor < 0) return errno;
  inherit(descriptor, old);
  int reason = write_and_close(descriptor, text);
  if (reason == 0 && std::rename(beside.c_str(), target.c_str()) != 0) reason = errno;
  if (reason != 0) unlink(beside.c_str());
  return reason;
}

/// Whether the folder takes no new file, as those of the kernel, or leaves a file no other's place,
/// as where it is mounted.
bool is_of_folder(int reason) {
  return reason == EACCES || reason == EPERM || reason == EROFS || reason == ENOENT ||
         reason == EBUSY;
}

int write(std::string const& name, std::string_view text) {
  struct stat old;
  if (stat(name.c_str(), &old) != 0) return errno == ENOENT ? replace(name, nullptr, text) : errno;
  if (!S_ISREG(old.st_mode)) return write_in_place(name, text);
  if (is_standard_output(old)) return put(text), 0;
  if (access(name.c_str(), W_OK) != 0) return errno;
  int const reason = replace(name, &old, text);
  return is_of_folder(reason) ? write_in_place(name, text) : reason;
}

}  // namespace

void write_whole_file(std::string const& name, std::string_view text) {
  if (int const reason = write(name, text); reason != 0)
    throw std::system_error(reason, std::generic_category(), "cannot write " + name);
}

}  // namespace zelk::cli
