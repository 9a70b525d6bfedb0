// The message tables of docs/messages.md.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvane::testing {

/// A row: a message with its placeholders (<code>, <library>, <function>), and the exports that set
/// it.
struct MessageRow {
  std::string text;
  std::vector<std::string> exports;
};

/// The rows under one heading of docs/messages.md; empty if there is no such heading.
std::vector<MessageRow> messageRows(std::string_view heading);

}  // namespace orvane::testing
