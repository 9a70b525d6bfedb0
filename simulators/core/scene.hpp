// The sky that every simulated camera sees: a night sky with airglow and a star cloud, several
// hundred stars, a banded planet with a ring and moons, and a wide pair of one red and one blue
// star that are brighter than all others.
//
// Positions are in heights of the sensor's full frame, so every camera shows the same sky: the
// planet in the middle, and the bright pair near the top left corner, where a small region of any
// sensor shows it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvane::sim {

// Brightness in red, green and blue; 1 is the brightest part of the planet.
using Light = std::array<float, 3>;

// A row of pixels whose light is computed.
struct SceneRow {
  double x = 0;            // the first pixel's centre, frame heights from the left edge
  double y = 0;            // frame heights from the top edge
  std::int32_t count = 0;  // pixels
};

class Scene {
 public:
  // Sets the stars from the seed, for a frame that is `aspect` frame heights wide and whose pixels
  // are `pixel` frame heights wide.
  void set(std::uint64_t seed, double aspect, double pixel);

  // Computes the light on each pixel of a row.
  void light(const SceneRow& row, Light* lights) const;

 private:
  struct Star {
    double x;  // frame heights from the frame's left edge
    double y;
    Light peak;
    double reach;  // its light is drawn up to this distance
  };

  void setSky();
  void addStar(double x, double y, const Light& peak);
  Light sky(double x, double y) const;
  void setSky(const SceneRow& row, Light* lights) const;
  void addStars(const SceneRow& row, Light* lights) const;
  void addPlanet(const SceneRow& row, Light* lights) const;

  double aspect_ = 1;
  double pixel_ = 1;
  double starWidth_ = 1;
  std::vector<Star> stars_;
  // The sky at the corners of square cells, row by row. It is smooth enough for linear
  // interpolation between them.
  std::vector<Light> sky_;
  std::size_t skyColumns_ = 0;
  double skyCell_ = 1;  // frame heights
};

}  // namespace orvane::sim
