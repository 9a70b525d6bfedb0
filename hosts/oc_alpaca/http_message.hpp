// Requests and answers, apart from the network.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace orvane::host {

struct Request {
  std::string method;  ///< upper case
  std::string target;  ///< path and query, as they were sent
  std::string host;    ///< the header of this name
  std::string accept;
  std::string body;
};

/// The bytes of an answer that is too long for one piece. One thread at a time.
class LongBody {
 public:
  virtual ~LongBody() = default;
  virtual std::uint64_t size() const = 0;
  /// The next bytes, which stay valid until the next call; none at the end.
  virtual std::span<const std::uint8_t> next() = 0;
};

struct Response {
  int status = 200;
  std::string contentType = "text/plain; charset=utf-8";
  std::string body;
  std::unique_ptr<LongBody> rest;  ///< what follows the body, or null
};

}  // namespace orvane::host
