// Answers clients that look for servers by UDP.
#pragma once

#include <array>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvane::host {

/// True if this is the text by which a client looks for servers.
bool isDiscovery(std::string_view datagram);

class Discovery {
 public:
  /// Answers on `port` with the server's port. `fromAnywhere` false: only clients on this computer.
  /// Throws std::runtime_error with a sentence if the port cannot be used.
  Discovery(boost::asio::io_context& context, std::uint16_t port, std::uint16_t serverPort,
            bool fromAnywhere);

 private:
  void receive();
  void answer(std::string_view datagram);

  boost::asio::ip::udp::socket socket_;
  boost::asio::ip::udp::endpoint sender_;
  std::array<char, 128> datagram_{};
  const std::string answer_;
  const bool fromAnywhere_;
};

}  // namespace orvane::host
