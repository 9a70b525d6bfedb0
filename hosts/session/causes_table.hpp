// The library's messages with their causes and cures: the one table behind explained() and
// docs/messages.md.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace orvane::host {

/// A message, or one result code of a message. Cause and cure are whole sentences for an observer,
/// as the programs print them. `forPrograms` is for authors of programs: only the document shows
/// it, so it may have links and code in it.
struct MessageRow {
  /// With <code> and <number> in place of numbers, and <library>, <function> and <key> in place of
  /// words. A row for one result code has this code in place of <code>.
  std::string_view message;
  std::string_view from;  ///< the functions with ", " between them; empty for one result code
  std::string_view cause;
  std::string_view cure;
  std::string_view forPrograms = {};
};

/// A result code of a maker's SDK.
struct ResultCode {
  std::int64_t code;
  std::string_view name;     ///< in the maker's header
  std::string_view meaning;  ///< part of a sentence
  bool helpsObserver = true;
  std::string_view forPrograms = {};  ///< only in the document
};

/// The messages under one heading of the document.
struct MessageSection {
  std::string_view heading;
  std::span<const MessageRow> rows;        ///< a message comes before its single codes
  std::span<const ResultCode> codes = {};  ///< of the maker's SDK, if the messages have codes
};

std::span<const MessageSection> messageSections();

}  // namespace orvane::host
