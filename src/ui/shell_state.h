// What the shell keeps beside the Workbench: the current file and its title, the last export,
// the modified flag of the main text area and the new-model flag. The texts it shows (the window
// title and the file messages) are made here, without any window, so that tests can read them.
#pragma once

#include <string>
#include <string_view>

namespace ovaro::ui {

inline constexpr std::string_view kProgramName = "Ovaro";
inline constexpr std::string_view kUntitled = "(untitled)";
inline constexpr std::size_t kTextAreaLimit = 32000;  // characters the main text area holds

struct ShellState {
  std::string fileName;   // full path of the model file last opened or saved; empty: none
  std::string fileTitle;  // the file name without its directory
  std::string exportFileName;
  std::string exportTitle;
  int modified = 0;      // 1 after the user edits the main text area
  int newModelFlag = 0;  // 1 while the dialogs of File: New run
};

// The window title: "Ovaro - <title>", "(untitled)" standing in for an empty title.
std::string captionText(std::string_view fileTitle);

// `format` with its one "%s" replaced by the file title ("(untitled)" for an empty title). A
// format without "%s" is returned as it is.
std::string fileMessageText(std::string_view format, std::string_view fileTitle);

}  // namespace ovaro::ui
