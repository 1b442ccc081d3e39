#pragma once

#include <csignal>
#include <initializer_list>
#include <string_view>

/// Standard output, by one thread. What is printed is written in units: what the reader has got
/// ends with a whole unit, whatever ends the command. All that is printed is one unit, or each line
/// is.
///
/// A write cut short by a full disk is taken back where the output is a regular file that ends
/// there. SIGINT, SIGTERM and SIGHUP end the command as soon as the unit being written is complete.
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

/// To be called before anything is printed.
void catch_signals();

/// Keeps signals from the threads that the caller starts while this lives.
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
