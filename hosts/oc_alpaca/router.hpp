// Answers requests: the protocol's paths, and the pages for people.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "oc_alpaca/camera_members.hpp"
#include "oc_alpaca/devices.hpp"
#include "oc_alpaca/http_message.hpp"
#include "oc_alpaca/image_bodies.hpp"

namespace orvane::host {

class Router {
 public:
  /// `hostName` is this computer's. `later` runs work on another thread.
  Router(Devices& devices, std::string hostName, RunLater later)
      : devices_(devices), hostName_(std::move(hostName)), later_(std::move(later)) {}

  /// Any thread that lives as long as the devices. Waits only for a camera that is to be connected
  /// or disconnected, and for a scan. Throws nothing but std::bad_alloc.
  Response answer(const Request& request);

 private:
  Response answerProtocol(const Request& request, std::string_view path, const Parameters& given);
  Response answerMember(const Member& member, CameraDevice& camera, const Parameters& given,
                        const TransactionNumbers& numbers) const;
  Response answerImage(CameraDevice& camera, const Request& request,
                       const TransactionNumbers& numbers) const;
  Json managementValue(std::string_view path) const;
  CameraDevice& cameraAt(std::string_view number) const;

  Devices& devices_;
  const std::string hostName_;
  const RunLater later_;
  mutable std::atomic<std::uint32_t> transactions_ = 0;
};

}  // namespace orvane::host
