// The table of messages in the documents, as the tests read it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvane::testing {

/// A row: a message with its placeholders (<code>, <library>, <function>), and the exports that can
/// leave it.
struct MessageRow {
  std::string text;
  std::vector<std::string> exports;
};

/// The rows under one heading of docs/messages.md; none where there is no such heading.
std::vector<MessageRow> messageRows(std::string_view heading);

}  // namespace orvane::testing
