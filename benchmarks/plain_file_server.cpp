// A plain HTTP server that sends the same bytes to everybody, with the library on which oc_alpaca
// stands. It is what oc_alpaca is compared with.
//     plain_file_server BYTES
// It prints its port and runs until it is killed.
#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <vector>

namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using asio::ip::tcp;

void answerAll(tcp::socket& socket, const std::vector<char>& bytes) {
  boost::beast::flat_buffer buffer;
  boost::system::error_code error;
  while (true) {
    http::request<http::string_body> request;
    http::read(socket, buffer, request, error);
    if (error) {
      return;
    }
    http::response<http::span_body<const char>> response(http::status::ok, request.version());
    response.body() = {bytes.data(), bytes.size()};
    response.prepare_payload();
    http::write(socket, response, error);
    if (error) {
      return;
    }
  }
}

[[noreturn]] void serve(const std::vector<char>& bytes) {
  asio::io_context context;
  tcp::acceptor acceptor(context, {asio::ip::address_v4::loopback(), 0});
  std::printf("%d\n", static_cast<int>(acceptor.local_endpoint().port()));
  std::fflush(stdout);
  while (true) {
    tcp::socket socket = acceptor.accept();
    socket.set_option(tcp::no_delay(true));
    answerAll(socket, bytes);
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    serve(std::vector<char>(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1, 'x'));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "plain_file_server: %s\n", error.what());
    return 1;
  }
}
