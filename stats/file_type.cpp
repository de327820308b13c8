#include "stats/file_type.h"

#include "config/text.h"

namespace stats {

void FindFileType(std::string_view uri, std::string& file_type) {
  file_type.clear();
  const std::string_view path = uri.substr(0, uri.find_first_of("?#&*"));
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos) return;
  const std::string_view after_dot = path.substr(dot + 1);
  const std::string_view type = after_dot.substr(0, after_dot.find_first_of("/+"));
  for (const char c : type) file_type += text::ToUpper(c);
}

}  // namespace stats
