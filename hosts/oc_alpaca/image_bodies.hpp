// A picture as an answer: binary, or as JSON.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "oc_alpaca/http_message.hpp"
#include "oc_alpaca/picture.hpp"

namespace orvane::host {

/// The client's and the server's number of a request.
struct TransactionNumbers {
  std::uint32_t client = 0;
  std::uint32_t server = 0;
};

/// The binary form: a header of 44 bytes, then the pixels as they are in memory.
Response imageBytes(std::shared_ptr<const Picture> picture, const TransactionNumbers& numbers);

/// The pixels as JSON: a list for each column.
Response imageJson(std::shared_ptr<const Picture> picture, const TransactionNumbers& numbers);

/// A picture with more pixels than this is only sent in binary form.
constexpr std::size_t mostJsonPixels = 64000000;

}  // namespace orvane::host
