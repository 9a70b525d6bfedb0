// The HTTP server: connections, limits, and the threads that answer.
#include "oc_alpaca/server.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <chrono>
#include <limits>
#include <optional>
#include <sstream>
#include <thread>
#include <utility>
#include <vector>

#include "oc_alpaca/discovery.hpp"
#include "system/failures.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using asio::ip::tcp;
using boost::system::error_code;

constexpr int mostConnections = 16;
constexpr std::uint32_t longestHeader = 8192;
constexpr std::uint64_t longestRequestBody = 4096;

// For a request to arrive, and for each part of an answer to leave.
constexpr std::chrono::seconds longestIdle{60};

// Each connection has a request at most, and an answer may wait for a camera. Others accept
// connections and connect cameras.
constexpr int threadCount = mostConnections + 8;

asio::ip::address addressFrom(const std::string& text) {
  error_code error;
  asio::ip::address address = asio::ip::make_address(text, error);
  if (error) {
    throw UsageError(inQuotes(text) + " is no address of a network interface.");
  }
  return address;
}

std::string textOf(beast::string_view text) {
  return {text.data(), text.size()};
}

// One connection: a request is read and answered, then the next.
class Session : public std::enable_shared_from_this<Session> {
 public:
  Session(tcp::socket socket, const AnswerRequest& answer, std::atomic<int>& count)
      : stream_(std::move(socket)), answer_(answer), count_(count) {
    ++count_;
  }
  ~Session() { --count_; }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void read() {
    parser_.emplace();
    parser_->header_limit(longestHeader);
    parser_->body_limit(longestRequestBody);
    stream_.expires_after(longestIdle);
    http::async_read(
        stream_, buffer_, *parser_,
        [self = shared_from_this()](error_code error, std::size_t) { self->answerRequest(error); });
  }

  // Says that there are too many connections, and closes this one.
  void refuse() {
    keepsAlive_ = false;
    response_.status = static_cast<int>(http::status::service_unavailable);
    response_.body = "Too many connections.\n";
    write();
  }

 private:
  auto whenWritten() {
    return [self = shared_from_this()](error_code error, std::size_t) { self->writeRest(error); };
  }

  void answerRequest(const error_code& error) {
    if (!error) {
      const auto& message = parser_->get();
      keepsAlive_ = message.keep_alive();
      version_ = message.version();
      try {
        response_ = answer_({textOf(message.method_string()), textOf(message.target()),
                             textOf(message[http::field::host]),
                             textOf(message[http::field::accept]), message.body()});
      } catch (const std::bad_alloc&) {
        fail(http::status::service_unavailable, "There is not enough memory.");
      }
    } else if (error == http::error::header_limit) {
      fail(http::status::request_header_fields_too_large, "The header is too long.");
    } else if (error == http::error::body_limit) {
      fail(http::status::payload_too_large, "The body is too long.");
    } else if (error.category() == make_error_code(http::error::bad_method).category() &&
               error != http::error::end_of_stream && error != http::error::partial_message) {
      fail(http::status::bad_request, "This is no HTTP request.");
    } else {
      return;  // the client has gone, or was silent for too long
    }
    write();
  }

  void fail(http::status status, const char* text) {
    keepsAlive_ = false;
    response_ = {};
    response_.status = static_cast<int>(status);
    response_.body = std::string(text) + "\n";
  }

  void write() {
    http::response<http::empty_body> head(static_cast<http::status>(response_.status), version_);
    head.set(http::field::content_type, response_.contentType);
    // The pages load nothing from elsewhere, and no page of another site may show them.
    head.set("Content-Security-Policy",
             "default-src 'none'; img-src 'self'; style-src 'unsafe-inline'; "
             "frame-ancestors 'none'");
    head.set("X-Content-Type-Options", "nosniff");
    head.set(http::field::cache_control, "no-store");
    head.content_length(response_.body.size() + (response_.rest ? response_.rest->size() : 0));
    head.keep_alive(keepsAlive_);
    std::ostringstream text;
    text << head.base();
    head_ = text.str();
    stream_.expires_after(longestIdle);
    const std::array parts{asio::buffer(head_), asio::buffer(response_.body)};
    asio::async_write(stream_, parts, whenWritten());
  }

  void writeRest(const error_code& error) {
    if (error) {
      return;
    }
    if (response_.rest) {
      const std::span<const std::uint8_t> part = response_.rest->next();
      if (!part.empty()) {
        stream_.expires_after(longestIdle);
        // Without the condition, each call to the system would take 64 KiB.
        const auto untilAll = [](const error_code& failed, std::size_t) {
          return failed ? std::size_t{0} : std::numeric_limits<std::size_t>::max();
        };
        asio::async_write(stream_, asio::buffer(part.data(), part.size()), untilAll, whenWritten());
        return;
      }
    }
    response_ = {};
    if (keepsAlive_) {
      read();
      return;
    }
    error_code ignored;
    stream_.socket().shutdown(tcp::socket::shutdown_send, ignored);
  }

  beast::tcp_stream stream_;
  const AnswerRequest& answer_;
  std::atomic<int>& count_;
  beast::flat_buffer buffer_{longestHeader + longestRequestBody};
  std::optional<http::request_parser<http::string_body>> parser_;
  bool keepsAlive_ = false;
  unsigned version_ = 11;
  std::string head_;
  Response response_;
};

}  // namespace

struct Server::State {
  asio::io_context context{threadCount};
  asio::executor_work_guard<asio::io_context::executor_type> work{context.get_executor()};
  tcp::acceptor acceptor{context};
  AnswerRequest answer;
  std::atomic<int> connections = 0;
  std::unique_ptr<Discovery> discovery;
  std::vector<std::thread> threads;

  void accept() {
    // A strand for each connection: its time limit may end it while it writes.
    acceptor.async_accept(asio::make_strand(context), [this](error_code error, tcp::socket socket) {
      if (error == asio::error::operation_aborted) {
        return;
      }
      if (error) {
        // There may be no descriptor left. Until there is one again, this must not spin.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
      } else {
        socket.set_option(tcp::no_delay(true), error);
        const auto session = std::make_shared<Session>(std::move(socket), answer, connections);
        if (connections > mostConnections) {
          session->refuse();
        } else {
          session->read();
        }
      }
      accept();
    });
  }
};

Server::Server() : state_(std::make_unique<State>()) {
  for (int count = 0; count < threadCount; ++count) {
    state_->threads.emplace_back([this] { state_->context.run(); });
  }
}

Server::~Server() {
  state_->work.reset();
  state_->context.stop();
  for (std::thread& thread : state_->threads) {
    thread.join();
  }
}

void Server::listen(const std::string& address, std::uint16_t port, AnswerRequest answer) {
  state_->answer = std::move(answer);
  const tcp::endpoint endpoint(addressFrom(address), port);
  try {
    tcp::acceptor& acceptor = state_->acceptor;
    acceptor.open(endpoint.protocol());
#ifndef _WIN32
    // On Windows this option would let two servers have one port.
    acceptor.set_option(tcp::acceptor::reuse_address(true));
#endif
    acceptor.bind(endpoint);
    acceptor.listen();
  } catch (const boost::system::system_error& error) {
    throw std::runtime_error("The port " + std::to_string(port) + " of " + address +
                             " cannot be used: " + error.code().message() +
                             ". Another program may be using it; --port names another port.");
  }
  state_->accept();
}

std::uint16_t Server::port() const {
  return state_->acceptor.local_endpoint().port();
}

void Server::answerDiscovery(std::uint16_t discoveryPort, bool fromAnywhere) {
  state_->discovery =
      std::make_unique<Discovery>(state_->context, discoveryPort, port(), fromAnywhere);
}

void Server::later(std::function<void()> work) {
  asio::post(state_->context, std::move(work));
}

std::string Server::hostName() {
  error_code error;
  const std::string name = asio::ip::host_name(error);
  return error ? "" : name;
}

bool Server::isLoopback(const std::string& address) {
  return addressFrom(address).is_loopback();
}

}  // namespace orvane::host
