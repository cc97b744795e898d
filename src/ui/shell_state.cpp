#include "ui/shell_state.h"

namespace ovaro::ui {

namespace {
std::string_view shownTitle(std::string_view fileTitle) {
  return fileTitle.empty() ? kUntitled : fileTitle;
}
}  // namespace

std::string captionText(std::string_view fileTitle) {
  std::string caption(kProgramName);
  caption += " - ";
  caption += shownTitle(fileTitle);
  return caption;
}

std::string fileMessageText(std::string_view format, std::string_view fileTitle) {
  std::string text(format);
  const std::size_t at = text.find("%s");
  if (at != std::string::npos) text.replace(at, 2, shownTitle(fileTitle));
  return text;
}

}  // namespace ovaro::ui
