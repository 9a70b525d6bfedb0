// The system's dialog for choosing a folder.
#pragma once

#include <windows.h>

#include <filesystem>
#include <optional>

namespace orvane::host {

/// Asks the user for a folder; none if the user cancels. The dialog starts in `now` if that is
/// there. Handles messages until it is closed. Throws std::runtime_error.
std::optional<std::filesystem::path> chooseFolder(HWND owner, const wchar_t* title,
                                                  const std::filesystem::path& now = {});

}  // namespace orvane::host
