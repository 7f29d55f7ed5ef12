#ifndef TESTS_FOUNDATION_GROUPINGLOCALE_H
#define TESTS_FOUNDATION_GROUPINGLOCALE_H

#include <locale>
#include <string>

// For its life, the process has a host's locale that writes a million as 1.000.000.
class GroupingLocale {
  public:
    GroupingLocale()
        : m_before(std::locale::global(std::locale(std::locale::classic(), new Grouping))) {}

    GroupingLocale(GroupingLocale const&) = delete;
    GroupingLocale& operator=(GroupingLocale const&) = delete;

    ~GroupingLocale() { std::locale::global(m_before); }

  private:
    struct Grouping : std::numpunct<wchar_t> {
        wchar_t do_thousands_sep() const override { return L'.'; }

        std::string do_grouping() const override { return "\3"; }
    };

    std::locale m_before;
};

#endif
