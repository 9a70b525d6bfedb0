// Answers clients that look for servers by UDP.
#include "oc_alpaca/discovery.hpp"

#include <boost/asio/buffer.hpp>
#include <stdexcept>

namespace orvane::host {

namespace asio = boost::asio;
using asio::ip::udp;

bool isDiscovery(std::string_view datagram) {
  return datagram.starts_with("alpacadiscovery1");
}

Discovery::Discovery(asio::io_context& context, std::uint16_t port, std::uint16_t serverPort,
                     bool fromAnywhere)
    : socket_(context),
      answer_("{\"AlpacaPort\":" + std::to_string(serverPort) + "}"),
      fromAnywhere_(fromAnywhere) {
  try {
    socket_.open(udp::v4());
    // Several servers of one computer share the port.
    socket_.set_option(udp::socket::reuse_address(true));
#ifdef SO_REUSEPORT
    using ReusePort = asio::detail::socket_option::boolean<SOL_SOCKET, SO_REUSEPORT>;
    socket_.set_option(ReusePort(true));
#endif
    // Not to the loopback address: a socket that is bound to it receives no broadcasts on Linux.
    socket_.bind({udp::v4(), port});
  } catch (const boost::system::system_error& error) {
    throw std::runtime_error("The UDP port " + std::to_string(port) +
                             " for discovery cannot be used: " + error.code().message() +
                             "; --discovery-port names another port.");
  }
  receive();
}

void Discovery::receive() {
  socket_.async_receive_from(asio::buffer(datagram_), sender_,
                             [this](boost::system::error_code error, std::size_t size) {
                               if (error == asio::error::operation_aborted) {
                                 return;
                               }
                               if (!error) {
                                 answer({datagram_.data(), size});
                               }
                               receive();
                             });
}

void Discovery::answer(std::string_view datagram) {
  if (isDiscovery(datagram) && (fromAnywhere_ || sender_.address().is_loopback())) {
    boost::system::error_code ignored;
    socket_.send_to(asio::buffer(answer_), sender_, 0, ignored);
  }
}

}  // namespace orvane::host
