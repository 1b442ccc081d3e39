#include "zelk/convert/stream.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <iomanip>
#include <iterator>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <thread>

#include "zelk/convert/text.h"

namespace zelk::convert {
namespace {

/// Groups digits and writes the decimal point as a comma.
class Grouping : public std::numpunct<char> {
  char do_thousands_sep() const override { return '.'; }
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

std::locale grouping() { return {std::locale::classic(), new Grouping}; }

TEST(Stream, WritesPaddedTextWhateverTheLocale) {
  struct {
    char const* number;
    std::ios_base& (*adjustment)(std::ios_base&);
    char const* padded;
  } const table[] = {
      {"-22/7", std::right, "***-22/7"},      {"-22/7", std::left, "-22/7***"},
      {"-22/7", std::internal, "-***22/7"},   {"22/7", std::internal, "****22/7"},
      {"1234567/2", std::right, "1234567/2"}, {"-12345678", std::internal, "-12345678"},
      {"0", std::internal, "*******0"},
  };
  for (auto const& [number, adjustment, padded] : table) {
    std::ostringstream out;
    out.imbue(grouping());
    QNumber const q = parse_rational(number);
    out << std::hex << std::showpos << adjustment << std::setfill('*') << std::setw(8) << q;
    EXPECT_EQ(out.width(), 0) << number;
    EXPECT_EQ(out.str(), padded);
  }
}

TEST(Stream, ReadsAsFarAsANumberGoes) {
  // What is read, a caret, what is left, and after an equals sign the number, if there is one.
  std::istringstream table(
      "415/93^=415/93; \t\n-7/2^ 8=-7/2;1/2^,3/4=1/2;1/2^-3=1/2;1/2^/3=1/2;1/2^e5=1/2;1.5^/2=3/2;"
      "1.5E+3^e=1500;1e-3^.5=1/1000;1e5^e=100000;1e5^/2=100000;1E5^/2=100000;12^x=12;"
      "1.234^.567=617/500;1^,5=1;9223372036854775808^)=9223372036854775808;^=;  ^=;^+5=;^.5=;^/5=;"
      "^e5=;-^-5=;-^e5=;1/^-2=;1/^=;1/^e5=;1.^e5=;1.5e^ach=;1e-^+5=;1/0^ =;1e1000001^)=");
  for (std::string row; std::getline(table, row, ';');) {
    auto const caret = row.find('^'), equals = row.find('=');
    auto const rest = row.substr(caret + 1, equals - caret - 1), number = row.substr(equals + 1);
    std::istringstream in(row.substr(0, caret) + rest);
    in.imbue(grouping());
    QNumber q(-3, 5);
    in >> std::setw(1) >> q;
    EXPECT_EQ(!in.fail(), !number.empty()) << row;
    EXPECT_FALSE(in.bad()) << row;
    EXPECT_EQ(in.eof(), rest.empty()) << row;
    EXPECT_EQ(in.width(), 1) << row;
    EXPECT_EQ(to_string(q), number.empty() ? "-3/5" : number) << row;
    in.clear();
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), rest) << row;
  }
  std::istringstream in(" 5");
  QNumber q(-3, 5);
  EXPECT_FALSE(in >> std::noskipws >> q);
  EXPECT_EQ(to_string(q), "-3/5");
}

/// Yields its text and then breaks, or ends the thread that reads it.
class Breaking : public std::streambuf {
 public:
  explicit Breaking(std::string& text, bool ends = false) : ends_thread(ends) {
    setg(text.data(), text.data(), text.data() + text.size());
  }

 private:
  int_type underflow() override {
    if (ends_thread) pthread_exit(nullptr);
    throw std::runtime_error("broken");
  }

  bool ends_thread;
};

TEST(Stream, ReportsABrokenBufferAsTheStreamIsTold) {
  std::string text = "12";
  QNumber q(-3, 5);
  for (auto const thrown : {std::ios_base::goodbit, std::ios_base::badbit}) {
    Breaking buffer(text);
    std::istream in(&buffer);
    in.exceptions(thrown);
    bool caught = false;
    try {
      in >> q;
    } catch (std::runtime_error const&) {
      caught = true;
    }
    EXPECT_EQ(caught, thrown == std::ios_base::badbit);
    EXPECT_TRUE(in.bad());
  }
  std::istringstream in("1/0");
  in.exceptions(std::ios_base::failbit);
  EXPECT_THROW(in >> q, std::ios_base::failure);

  // The whole process would end if the end of the thread were taken for an error.
  std::thread([&] {
    Breaking last(text, true);
    std::istream ending(&last);
    ending >> q;
  }).join();
  EXPECT_EQ(to_string(q), "-3/5");
}

}  // namespace
}  // namespace zelk::convert
