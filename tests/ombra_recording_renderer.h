// A renderer for the host's tests whose slots write down how they were
// called, one line a call, as "dci_polyline 0,1,0 2,1,0 #102030 single": the
// slot less its "draw_", then its lists: points x,y,z; colours #rrggbb (aa
// added when not opaque); parameters u/v/r; w values wN; normals nX/Y/Z;
// "-" for a null list; "single" when that flag is set.
//
// play() takes lines of the same form, puts the host's standard routine in
// the slot named and calls it, so that the lines written are the calls the
// routine sends down. Bare integers are the further int arguments (an
// image's row pitch, then its index bytes; the four sides of
// "span_dc_rectangle"); a list that is not given goes as null.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

#include "host/ombra.h"

namespace ombra_testing {

template <std::size_t N>
struct Slot_Name {
  char text[N];
  constexpr Slot_Name(const char (&name)[N]) { std::copy_n(name, N, text); }
};

template <class T, class... U>
constexpr bool is_one_of = (std::is_same_v<T, U> || ...);

template <class T>
const T* or_null(const std::vector<T>& list) {
  return list.empty() ? nullptr : list.data();
}

// The arguments of a line to play, taken in the order of the slot's.
struct Play_Arguments {
  std::vector<OT_Point_D> points;
  std::vector<OT_Point> floats;
  std::vector<OT_DCI_Point> integers;
  std::vector<OT_RGB32> colors;
  std::vector<OT_Parameter> parameters;
  std::vector<float> w;
  std::vector<int> ints;
  std::vector<byte> bytes;
  bool single = false;
  int points_used = 0, ints_used = 0;

  explicit Play_Arguments(std::istringstream& in) {
    for (std::string word; in >> word;) {
      char* end = nullptr;
      double v[3];
      if (word == "single") {
        single = true;
      } else if (word[0] == '#') {
        const unsigned long c = std::strtoul(word.c_str() + 1, nullptr, 16) << (word.size() == 7 ? 8 : 0);
        colors.push_back(
            OT_RGB32::rgba(c >> 24 & 255, c >> 16 & 255, c >> 8 & 255, word.size() == 7 ? 255 : c & 255));
      } else if (word[0] == 'w') {
        w.push_back(std::strtof(word.c_str() + 1, nullptr));
      } else if (word.find_first_of(",/") != word.npos) {
        for (double& value : v) value = std::strtod(end ? end + 1 : word.c_str(), &end);
        if (word.find('/') != word.npos) parameters.push_back({float(v[0]), float(v[1]), float(v[2])});
        if (word.find(',') != word.npos) points.push_back({v[0], v[1], v[2]});
      } else {
        ints.push_back(std::atoi(word.c_str()));
        if (ints.size() > 1) bytes.push_back(byte(ints.back()));
      }
    }
    // Integer points are written as integers; the others are only kept in range.
    auto integer = [](double v) { return std::isfinite(v) ? int(std::clamp(v, -2e9, 2e9)) : 0; };
    for (const OT_Point_D& p : points) {
      floats.push_back({float(p.x), float(p.y), float(p.z)});
      integers.push_back({integer(p.x), integer(p.y), integer(p.z)});
    }
  }

  template <class T>
  T next() {
    if constexpr (std::is_same_v<T, int>) {  // the count before the points, others after them
      return points_used == 0 ? int(points.size()) : ints_used < int(ints.size()) ? ints[ints_used++] : 1;
    } else if constexpr (std::is_same_v<T, const OT_Point*>) {
      return floats.data() + points_used++;
    } else if constexpr (std::is_same_v<T, const OT_DCI_Point*>) {
      return integers.data() + points_used++;
    } else if constexpr (std::is_same_v<T, const OT_Point_D*>) {
      return points.data() + points_used++;
    } else if constexpr (std::is_same_v<T, bool>) {
      return single;
    } else if constexpr (is_one_of<T, const OT_RGB32*, const OT_Parameter*, const float*, const byte*>) {
      return std::is_same_v<T, const OT_RGB32*>       ? T(or_null(colors))
             : std::is_same_v<T, const OT_Parameter*> ? T(or_null(parameters))
             : std::is_same_v<T, const float*>        ? T(or_null(w))
                                                      : T(or_null(bytes));
    } else if constexpr (std::is_same_v<T, OT_Shared_Image&>) {
      static OT_Shared_Image none;
      return none;
    } else {
      return T{};
    }
  }
};

inline std::string_view short_name(std::string_view slot) {
  return slot.starts_with("draw_") ? slot.substr(5) : slot;
}

inline std::string hex(const OT_RGB32& c) {
  char text[16];
  std::snprintf(text, sizeof text, c.a == 255 ? "#%02x%02x%02x" : "#%02x%02x%02x%02x", c.r, c.g, c.b, c.a);
  return text;
}

class Recorder : public OT_Renderer_Data {
 public:
  // Every slot records, or with `only_dots` the dot slot alone, so that the
  // host's routines in the others run whole chains down to the pixels.
  explicit Recorder(bool only_dots = false) : OT_Renderer_Data(nullptr) {
#define OMBRA_RECORD_SLOT(name, ...) \
  if (!only_dots) name.install(this, &record<#name __VA_OPT__(, ) __VA_ARGS__>);
    OT_ACTION_SLOTS(OMBRA_RECORD_SLOT)
#undef OMBRA_RECORD_SLOT
    draw_dci_dot.install(this, &record<"draw_dci_dot", const OT_DCI_Point*, const OT_RGB32*>);
  }

  // Plays each line of `lines`, separated by ';', with the rendition.
  void play(const std::string& lines, const OT_Rendition& rendition) {
    std::istringstream all(lines);
    for (std::string line; std::getline(all, line, ';');) {
      std::istringstream in(line);
      std::string name;
      in >> name;
      Play_Arguments arguments(in);
      const OT_Renderer_Data standard(nullptr);
      const std::vector<int>& s = arguments.ints;
      if (name == "span_dc_rectangle")
        OB_Span_DC_Rectangle(this, rendition, s.at(0), s.at(1), s.at(2), s.at(3));
#define OMBRA_PLAY_SLOT(slot, ...)              \
  if (name == short_name(#slot)) {              \
    slot.install(this, standard.slot.function); \
    call(slot, rendition, arguments);           \
  }
      OT_ACTION_SLOTS(OMBRA_PLAY_SLOT)
#undef OMBRA_PLAY_SLOT
    }
  }

  std::vector<std::string> calls;
  std::vector<OT_Rendition> renditions;  // one a call
  std::vector<OT_DCI_Point> dots;        // the points of the dot slot's calls

 private:
  template <class... Args>
  static void call(const OT_Action<Args...>& slot, const OT_Rendition& rendition, Play_Arguments& arguments) {
    std::tuple<Args...> values{arguments.next<Args>()...};  // braces take them in order
    std::apply([&](auto&&... a) { slot(rendition, a...); }, values);
  }

  template <Slot_Name Name, class... Args>
  static void record(OT_Renderer_Data* object, const OT_Rendition& rendition, Args... args) {
    Recorder& self = static_cast<Recorder&>(*object);
    const std::string_view name = short_name(Name.text);
    // Gouraud and textured lists have an entry a point, the others one.
    const bool per_point = name.find("gouraud") != name.npos || name.find("textured") != name.npos;
    std::ostringstream line;
    line << name;
    int count = -1;
    auto list = [&](const auto* items, int n, auto write) {
      if (!items) line << " -";
      for (int i = 0; items && i < n; ++i) write(line << ' ', items[i]);
    };
    [[maybe_unused]] auto put = [&](auto value) {
      using T = decltype(value);
      if constexpr (std::is_same_v<T, int>) {
        if (count < 0) count = value;
      } else if constexpr (std::is_same_v<T, bool>) {
        if (value) line << " single";
      } else if constexpr (is_one_of<T, const OT_DCI_Point*, const OT_Point*, const OT_Point_D*>) {
        list(value, std::max(count, 1), [](auto& o, const auto& p) { o << p.x << ',' << p.y << ',' << p.z; });
        if constexpr (std::is_same_v<T, const OT_DCI_Point*>)
          if (name == "dci_dot") self.dots.push_back(*value);
      } else if constexpr (std::is_same_v<T, const OT_RGB32*>) {
        list(value, per_point ? count : 1, [](auto& o, const OT_RGB32& c) { o << hex(c); });
      } else if constexpr (std::is_same_v<T, const OT_Parameter*>) {
        list(value, count, [](auto& o, const OT_Parameter& p) { o << p.u << '/' << p.v << '/' << p.r; });
      } else if constexpr (std::is_same_v<T, const float*>) {
        list(value, count, [](auto& o, float w) { o << 'w' << w; });
      } else if constexpr (std::is_same_v<T, const OT_Vector*>) {
        list(value, count, [](auto& o, const OT_Vector& n) { o << 'n' << n.x << '/' << n.y << '/' << n.z; });
      }
    };
    (put(args), ...);
    self.calls.push_back(line.str());
    self.renditions.push_back(rendition);
  }
};

}  // namespace ombra_testing
