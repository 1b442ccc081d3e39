#pragma once

#include <sys/stat.h>

#include <csignal>
#include <functional>
#include <initializer_list>
#include <string_view>
#include <thread>

/// Standard output, by one thread. What is printed is written in units: what the reader has got
/// ends with a whole unit, whatever ends the command. All that is printed is one unit, or each line
/// is.
///
/// A write cut short by a full disk is taken back where the output is a regular file that ends
/// there. A signal that ends the command, if it can be caught, does so as soon as the unit being
/// written is complete.
namespace zelk::cli {

/// Makes each line a unit.
void print_by_lines();

/// Takes a piece of a result. Throws: std::system_error when it cannot be written; so does all that
/// is printed later.
void put(std::string_view text);
void print(std::initializer_list<std::string_view> pieces);

/// Writes what has been printed; a unit that is not a line ends here. Throws: std::system_error.
void flush_output();

/// The same without a throw, nor an allocation: returns the `errno` of a write that failed, or 0. A
/// later call of the others throws.
int try_to_flush_output() noexcept;

/// Writes all of it, waiting as long as the file needs. Returns false if that fails, with `errno`.
bool write_all(int file, std::string_view text) noexcept;

/// Whether it is the regular file that standard output goes to.
bool is_standard_output(struct stat const& file);

/// Both to be called before anything is opened or printed. Where standard input, output or error is
/// closed, no file that is opened comes to stand in its place: reading or writing it fails.
void hold_standard_files();
void catch_signals();

/// A thread that leaves signals to the others. Throws: std::system_error when there are too many.
std::thread thread_without_signals(std::function<void()> work);

/// Keeps signals waiting while this lives.
class SignalsBlocked {
 public:
  SignalsBlocked();
  SignalsBlocked(SignalsBlocked const&) = delete;
  SignalsBlocked& operator=(SignalsBlocked const&) = delete;
  ~SignalsBlocked();

 private:
  sigset_t before;
};

}  // namespace zelk::cli
