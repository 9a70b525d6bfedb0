// The HTTP server: connections, limits, and the threads that answer.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "oc_alpaca/http_message.hpp"

namespace orvane::host {

/// Answers a request. Called on the server's threads, several at a time, and may wait.
using AnswerRequest = std::function<Response(const Request&)>;

class Server {
 public:
  Server();

  /// Closes the connections and waits for the answers that are being made.
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Listens on this address and port. Throws UsageError if the address is none, and
  /// std::runtime_error with a sentence if it cannot be used.
  void listen(const std::string& address, std::uint16_t port, AnswerRequest answer);

  /// The port that is listened on. (It is not the one of listen() if that was 0.)
  std::uint16_t port() const;

  /// Answers those who look for a server on this port by UDP. `fromAnywhere` false: only those on
  /// this computer. Throws std::runtime_error with a sentence if the port cannot be used.
  void answerDiscovery(std::uint16_t discoveryPort, bool fromAnywhere);

  /// Runs work on one of the server's threads, which live as long as the server.
  void later(std::function<void()> work);

  /// This computer's name.
  static std::string hostName();

  /// True if the address can only be reached from this computer. Throws UsageError if it is none.
  static bool isLoopback(const std::string& address);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace orvane::host
