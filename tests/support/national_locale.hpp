// A host's locale that groups digits by dots and writes a decimal comma.
#pragma once

#include <locale>
#include <string>

namespace support {

class NationalNumbers : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

// The locale of the process for as long as it lives.
class NationalLocale {
 public:
  NationalLocale()
      : before_(std::locale::global(std::locale(std::locale::classic(), new NationalNumbers))) {}
  ~NationalLocale() { std::locale::global(before_); }
  NationalLocale(const NationalLocale&) = delete;
  NationalLocale& operator=(const NationalLocale&) = delete;

 private:
  std::locale before_;
};

}  // namespace support
