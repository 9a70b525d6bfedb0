// Answers requests: the protocol's paths, and the pages for people.
#include "oc_alpaca/router.hpp"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>
#include <variant>

#include "oc_alpaca/host_header.hpp"
#include "oc_alpaca/setup_page.hpp"
#include "system/text.hpp"

namespace orvane::host {

namespace {

constexpr int badRequest = 400;
constexpr int forbidden = 403;
constexpr int methodNotAllowed = 405;
constexpr int internalError = 500;

Response plainText(int status, std::string text) {
  Response response;
  response.status = status;
  response.body = std::move(text) + "\n";
  return response;
}

Response json(const Json& value) {
  Response response;
  response.contentType = "application/json";
  response.body = value.dump(-1, ' ', false, Json::error_handler_t::replace);
  return response;
}

// The answer with its numbers. A null value is left out.
Json envelope(const Json& value, const TransactionNumbers& numbers, ErrorNumber error,
              const std::string& text) {
  Json answer = Json::object();
  if (!value.is_null()) {
    answer["Value"] = value;
  }
  answer["ClientTransactionID"] = numbers.client;
  answer["ServerTransactionID"] = numbers.server;
  answer["ErrorNumber"] = static_cast<int>(error);
  answer["ErrorMessage"] = text;
  return answer;
}

// The error's answer. In place of a picture there are no type and no dimensions.
Response errorAnswer(const AlpacaError& error, const Json& neutral, bool isImage,
                     const TransactionNumbers& numbers) {
  const Json answer = envelope(neutral, numbers, error.number(), validUtf8(error.what()));
  if (!isImage) {
    return json(answer);
  }
  Json image{{"Type", 0}, {"Rank", 0}};
  image.update(answer);
  return json(image);
}

void require(const CameraDevice& camera, Needs needs) {
  if (needs == Needs::Connection) {
    camera.requireConnected();
  } else if (needs == Needs::Exposure) {
    camera.requireNotLost();
  }
}

[[noreturn]] void refusePath(std::string_view path) {
  throw BadRequest("There is nothing at " + inQuotes(validUtf8(std::string(path))) + ".");
}

// The part of the path up to the next slash, which is removed with it.
std::string_view nextPart(std::string_view& path) {
  const std::size_t end = std::min(path.find('/'), path.size());
  const std::string_view part = path.substr(0, end);
  path.remove_prefix(std::min(end + 1, path.size()));
  return part;
}

}  // namespace

Response Router::answer(const Request& request) {
  try {
    if (!isOwnHost(request.host, hostName_)) {
      return plainText(forbidden, "This server is not known by the name in the Host header.");
    }
    if (request.method != "GET" && request.method != "PUT") {
      return plainText(methodNotAllowed, "Only GET and PUT are possible.");
    }
    const std::string_view target = request.target;
    const std::size_t question = std::min(target.find('?'), target.size());
    const std::string_view path = target.substr(0, question);
    if (path == "/" || path == "/setup" || path.starts_with("/setup/")) {
      if (path == "/" || path == "/setup") {
        devices_.scanAgain();
      }
      return answerSetup(devices_, path);
    }
    const Parameters given = request.method == "GET"
                                 ? Parameters(target.substr(std::min(question + 1, target.size())),
                                              Parameters::Names::AnyCase)
                                 : Parameters(request.body, Parameters::Names::ExactCase);
    return answerProtocol(request, path, given);
  } catch (const BadRequest& error) {
    return plainText(badRequest, error.what());
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return plainText(internalError, error.what());
  }
}

Response Router::answerProtocol(const Request& request, std::string_view path,
                                const Parameters& given) {
  std::string_view rest = path;
  constexpr std::string_view devicePath = "/api/v1/camera/";
  const bool isManagement = path.starts_with("/management/");
  if (!isManagement && !path.starts_with(devicePath)) {
    refusePath(path);
  }
  TransactionNumbers numbers;
  given.identifier("ClientID");
  numbers.client = given.identifier("ClientTransactionID");
  if (isManagement) {
    if (request.method != "GET") {
      refusePath(path);
    }
    const Json value = managementValue(path);
    numbers.server = ++transactions_;
    return json(envelope(value, numbers, ErrorNumber::None, ""));
  }
  rest.remove_prefix(devicePath.size());
  CameraDevice& camera = cameraAt(nextPart(rest));
  const Verb verb = request.method == "GET" ? Verb::Get : Verb::Put;
  if (verb == Verb::Get && rest == "imagearray") {
    numbers.server = ++transactions_;
    return answerImage(camera, request, numbers);
  }
  const Member* const member = findMember(rest, verb);
  if (member == nullptr) {
    refusePath(path);
  }
  return answerMember(*member, camera, given, numbers);
}

Response Router::answerMember(const Member& member, CameraDevice& camera, const Parameters& given,
                              const TransactionNumbers& numbersBefore) const {
  MemberCall call{camera, {}, later_};
  for (const Parameter& parameter : member.parameters) {
    call.values.push_back(given.value(parameter));
  }
  TransactionNumbers numbers = numbersBefore;
  numbers.server = ++transactions_;
  try {
    require(camera, member.needs);
    return json(envelope(member.answer(call), numbers, ErrorNumber::None, ""));
  } catch (const AlpacaError& error) {
    return errorAnswer(error, member.neutral, member.name == "imagearrayvariant", numbers);
  }
}

Response Router::answerImage(CameraDevice& camera, const Request& request,
                             const TransactionNumbers& numbers) const {
  try {
    camera.requireNotLost();
    std::shared_ptr<const Picture> picture = camera.picture();
    if (lowerCase(request.accept).find("application/imagebytes") != std::string::npos) {
      return imageBytes(std::move(picture), numbers);
    }
    if (pixelCount(picture->layout.width, picture->layout.height) > mostJsonPixels) {
      throw AlpacaError(ErrorNumber::InvalidOperation,
                        "The picture is too large for JSON. Ask for application/imagebytes.");
    }
    return imageJson(std::move(picture), numbers);
  } catch (const AlpacaError& error) {
    return errorAnswer(error, Json::array(), true, numbers);
  }
}

Json Router::managementValue(std::string_view path) const {
  if (path == "/management/apiversions") {
    return Json::array({1});
  }
  if (path == "/management/v1/description") {
    return {{"ServerName", "Orvane Desktop Camera on " + hostName_},
            {"Manufacturer", "Orvane"},
            {"ManufacturerVersion", ORVANE_VERSION},
            {"Location", ""}};
  }
  if (path != "/management/v1/configureddevices") {
    refusePath(path);
  }
  devices_.scanAgain();
  Json list = Json::array();
  for (std::size_t number = 0; number < devices_.size(); ++number) {
    const CameraDevice& camera = devices_.at(number);
    list.push_back({{"DeviceName", camera.camera().name},
                    {"DeviceType", "Camera"},
                    {"DeviceNumber", number},
                    {"UniqueID", camera.uniqueId()}});
  }
  return list;
}

CameraDevice& Router::cameraAt(std::string_view text) const {
  const std::optional<std::size_t> number = deviceNumber(text, devices_);
  if (!number) {
    throw BadRequest("There is no camera " + inQuotes(validUtf8(std::string(text))) + ".");
  }
  return devices_.at(*number);
}

}  // namespace orvane::host
