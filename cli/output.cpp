#include "cli/output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <iterator>
#include <system_error>
#include <utility>

#include "cli/terminal.h"

namespace zelk::cli {
namespace {

char buffer[1 << 16];
std::size_t buffered = 0;
bool by_lines = false;
// How many bytes of a unit that is not complete have been written.
std::size_t unfinished = 0;
// The errno of a write that failed. A later one need not fail again, so that this is remembered.
int failure = 0;

// While a unit is being written, a signal is only noted.
std::atomic<bool> is_within_unit = false;
std::atomic<int> noted_signal = 0;
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

void end_by(int signal) {
  std::signal(signal, SIG_DFL);
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  raise(signal);
  pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
}

/// Whether it tells of a fault of the program itself, and was not sent.
bool is_fault(int signal, siginfo_t const& information) {
  bool const can_be = signal == SIGSEGV || signal == SIGBUS || signal == SIGFPE || signal == SIGILL;
  return can_be && information.si_code > 0;
}

void note_or_end(int signal, siginfo_t* information, void*) {
  int const before = errno;
  // Behind a fault there is no way on.
  if (is_within_unit && !is_fault(signal, *information)) {
    noted_signal = signal;
  } else {
    erase_progress_now();
    end_by(signal);
  }
  errno = before;
}

/// How many of these bytes have to be written before a signal may end the command.
std::size_t rest_of_unit(std::string_view text) {
  if (unfinished == 0) return 0;
  auto const end = by_lines ? text.find('\n') : std::string_view::npos;
  return end == std::string_view::npos ? text.size() : end + 1;
}

void note_written(std::string_view text) {
  auto const end = by_lines ? text.rfind('\n') : std::string_view::npos;
  unfinished = end == std::string_view::npos ? unfinished + text.size() : text.size() - end - 1;
}

/// Removes the unit that could not be completed from the end of a regular file.
void take_back() {
  struct stat file;
  if (fstat(STDOUT_FILENO, &file) != 0 || !S_ISREG(file.st_mode)) return;
  auto const end = lseek(STDOUT_FILENO, 0, SEEK_CUR);
  if (end != file.st_size) return;
  auto const whole = end - static_cast<off_t>(unfinished);
  if (ftruncate(STDOUT_FILENO, whole) == 0) lseek(STDOUT_FILENO, whole, SEEK_SET);
  unfinished = 0;
}

/// Whether a write that failed can be tried again, perhaps after waiting.
bool can_go_on(int file) {
  if (errno == EINTR) return true;
  if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
  pollfd wanted = {file, POLLOUT, 0};
  return poll(&wanted, 1, -1) >= 0 || errno == EINTR;
}

void end_if_signalled() {
  if (!is_within_unit)
    if (int const signal = noted_signal) end_by(signal);
}

bool write_out(std::string_view text) {
  if (text.empty()) return true;
  Screen const screen;
  is_within_unit = true;
  while (!text.empty() && failure == 0) {
    auto size = text.size();
    if (noted_signal != 0) size = rest_of_unit(text);
    if (size == 0) break;
    auto const count = write(STDOUT_FILENO, text.data(), size);
    if (count < 0 && can_go_on(STDOUT_FILENO)) continue;
    if (count < 0) {
      failure = errno;
      if (unfinished != 0) take_back();
      break;
    }
    note_written(text.substr(0, static_cast<std::size_t>(count)));
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  is_within_unit = unfinished != 0 && failure == 0;
  end_if_signalled();
  return failure == 0;
}

bool empty_buffer() { return write_out({buffer, std::exchange(buffered, 0)}); }

void throw_if_failed() {
  if (failure != 0)
    throw std::system_error(failure, std::generic_category(), "cannot write to standard output");
}

}  // namespace

void print_by_lines() { by_lines = true; }

void put(std::string_view text) {
  throw_if_failed();
  if (text.size() > sizeof buffer - buffered) {
    empty_buffer();
    if (text.size() > sizeof buffer) {
      write_out(text);
      text = {};
    }
    throw_if_failed();
  }
  buffered += text.copy(buffer + buffered, text.size());
}

void print(std::initializer_list<std::string_view> pieces) {
  for (auto const piece : pieces) put(piece);
}

int try_to_flush_output() noexcept {
  empty_buffer();
  if (!by_lines) {
    unfinished = 0;
    is_within_unit = false;
    end_if_signalled();
  }
  return failure;
}

void flush_output() {
  try_to_flush_output();
  throw_if_failed();
}

bool write_all(int file, std::string_view text) noexcept {
  while (!text.empty()) {
    auto const count = write(file, text.data(), text.size());
    if (count >= 0)
      text.remove_prefix(static_cast<std::size_t>(count));
    else if (!can_go_on(file))
      return false;
  }
  return true;
}

void catch_signals() {
  // These stop the command or do nothing to it.
  constexpr int others[] = {SIGCHLD, SIGCONT, SIGTSTP, SIGTTIN, SIGTTOU, SIGURG, SIGWINCH};
  std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is a write that fails
  struct sigaction action = {};
  action.sa_sigaction = note_or_end;
  action.sa_flags = SA_SIGINFO;
  sigfillset(&action.sa_mask);
  for (int signal = 1; signal <= SIGRTMAX; ++signal) {
    struct sigaction before;
    // What was ignored at the start, by nohup for one, stays ignored.
    if (std::ranges::find(others, signal) == std::end(others) &&
        sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_DFL)
      sigaction(signal, &action, nullptr);  // fails for those that cannot be caught
  }
}

void hold_standard_files() {
  constexpr int modes[] = {O_WRONLY, O_RDONLY, O_RDONLY};
  for (int file = 0; file < 3; ++file)
    if (fcntl(file, F_GETFD) < 0) open("/dev/null", modes[file]);  // the least that is free
}

bool is_standard_output(struct stat const& file) {
  struct stat output;
  return S_ISREG(file.st_mode) && fstat(STDOUT_FILENO, &output) == 0 &&
         file.st_dev == output.st_dev && file.st_ino == output.st_ino;
}

std::thread thread_without_signals(std::function<void()> work) {
  SignalsBlocked const blocked;
  return std::thread(std::move(work));
}

SignalsBlocked::SignalsBlocked() {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &before);
}

SignalsBlocked::~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }

}  // namespace zelk::cli
