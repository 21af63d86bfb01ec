// Finding a text within others, whatever the case of its letters.
#pragma once

#include <string>

namespace krt9ctl {

class TextSearch {
  public:
    // UTF-8. An empty text is contained in every other one.
    explicit TextSearch(const std::string& sought);
    ~TextSearch();
    TextSearch(const TextSearch&) = delete;
    TextSearch& operator=(const TextSearch&) = delete;

    // False for a text that is not UTF-8.
    bool IsIn(const std::string& text) const;

  private:
    const void* sought_;  // an NSString, owned
};

}  // namespace krt9ctl
