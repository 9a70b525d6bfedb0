// The members of the protocol's camera interface, in one table.
#pragma once

#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "oc_alpaca/camera_device.hpp"
#include "oc_alpaca/parameters.hpp"

namespace orvane::host {

enum class Verb { Get, Put };

/// What a member needs of the camera.
enum class Needs {
  Nothing,     ///< works without a connection
  Connection,  ///< fails with "not connected" without one
  Exposure     ///< the same, but after a lost connection it fails with the reason of the loss
};

using ParameterValues = std::vector<ParameterValue>;

/// A camera's connecting and disconnecting goes on after the answer.
using RunLater = std::function<void(std::function<void()>)>;

/// A request to a member.
struct MemberCall {
  CameraDevice& camera;
  ParameterValues values;  ///< of the member's parameters
  const RunLater& later;
};

struct Member {
  std::string_view name;
  Verb verb = Verb::Get;
  Needs needs = Needs::Connection;
  Json neutral;                       ///< the value that an error is answered with; null for Put
  std::vector<Parameter> parameters;  ///< that must be there
  Json (*answer)(const MemberCall&);  ///< the value; throws AlpacaError
};

/// All members but imagearray's GET, whose answer has a form of its own.
std::span<const Member> cameraMembers();

/// The member; null if there is none.
const Member* findMember(std::string_view name, Verb verb);

}  // namespace orvane::host
