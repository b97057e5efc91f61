// tarn-render run as a person runs it: scripts written to a temporary folder,
// the program started with posix_spawn, its exit status, output and pictures
// checked.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <png.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "host/ombra.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;

struct Outcome {
  int status = -1;
  std::string out;
  std::string err;
};

std::string read_file(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

struct Picture {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgb;  // top row first
  std::array<int, 3> at(int x, int y) const {
    const std::size_t i = (std::size_t(y) * width + x) * 3;
    return {rgb[i], rgb[i + 1], rgb[i + 2]};
  }
};

// Reads any PNG as 8-bit RGB.
bool read_png(const fs::path& path, Picture& picture) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, path.c_str())) return false;
  image.format = PNG_FORMAT_RGB;
  picture.width = int(image.width);
  picture.height = int(image.height);
  picture.rgb.resize(PNG_IMAGE_SIZE(image));
  return png_image_finish_read(&image, nullptr, picture.rgb.data(), 0, nullptr) != 0;
}

// The PNG header fields: width, height, bit depth, colour type.
struct Png_Header {
  std::uint32_t width = 0, height = 0;
  int bit_depth = 0, color_type = -1;
};

Png_Header png_header(const fs::path& path) {
  const std::string bytes = read_file(path);
  Png_Header header;
  if (bytes.size() < 26 || bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") != 0 || bytes.compare(12, 4, "IHDR") != 0)
    return header;
  auto word = [&](std::size_t at) {
    return std::uint32_t(std::uint8_t(bytes[at])) << 24 | std::uint32_t(std::uint8_t(bytes[at + 1])) << 16 |
           std::uint32_t(std::uint8_t(bytes[at + 2])) << 8 | std::uint32_t(std::uint8_t(bytes[at + 3]));
  };
  header.width = word(16);
  header.height = word(20);
  header.bit_depth = std::uint8_t(bytes[24]);
  header.color_type = std::uint8_t(bytes[25]);
  return header;
}

class Tool : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::path(::testing::TempDir()) / "tarn-render-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    dir_ = pattern;
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
  }

  fs::path write_script(const std::string& text, const std::string& name = "script.tarn") {
    const fs::path path = dir_ / name;
    std::ofstream(path) << text;
    return path;
  }

  // Runs tarn-render with `args`, standard input from `input` (or nothing).
  Outcome run(const std::vector<std::string>& args, const fs::path& input = "/dev/null") {
    const fs::path out = dir_ / "stdout.txt", err = dir_ / "stderr.txt";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    std::vector<std::string> words{TARN_RENDER_PATH};
    words.insert(words.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    Outcome result;
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, TARN_RENDER_PATH, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    EXPECT_EQ(spawned, 0);
    if (spawned != 0) return result;
    int status = 0;
    waitpid(pid, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = read_file(out);
    result.err = read_file(err);
    return result;
  }

  Outcome run_script(const std::string& text) { return run({write_script(text).string()}); }

  fs::path dir_;
};

// The triangle (10,10), (14,10), (10,14) on a black window. Spans are half
// open on the right and rows at the top, so row 13 holds x 10 alone and
// neither (14,10) nor (10,14) is drawn.
const char* const triangle_script = R"(# one flat triangle
window 32 24
mode rgb32
set colors.window_color 0 0 0 255
set colors.color 10 20 30 255
clear_color
draw_dci_polytriangle 10 10 0  14 10 0  10 14 0
probe 10 13
probe 11 13
probe 14 10
probe 10 14
probe 13 10
)";

TEST_F(Tool, ProbesATriangleInRgb32) {
  const Outcome result = run_script(triangle_script);
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(lines_of(result.out), (std::vector<std::string>{
                                      "probe 10 13 color=10,20,30,255",
                                      "probe 11 13 color=0,0,0,255",
                                      "probe 14 10 color=0,0,0,255",
                                      "probe 10 14 color=0,0,0,255",
                                      "probe 13 10 color=10,20,30,255",
                                  }));
}

TEST_F(Tool, ReadsTheScriptFromStandardInput) {
  const Outcome result = run({"-"}, write_script(triangle_script));
  EXPECT_EQ(result.status, 0) << result.err;
  ASSERT_EQ(lines_of(result.out).size(), 5u);
  EXPECT_EQ(lines_of(result.out)[0], "probe 10 13 color=10,20,30,255");
}

TEST_F(Tool, ProbesDepthInDepthModesAndIndicesInMappedModes) {
  const Outcome result = run_script(R"(
window 32 24
mode z_rgb32
set colors.color 200 100 50 255
clear_color
clear_depth
draw_dc_polytriangle 10 10 300  14 10 300  10 14 300
probe 10 13
probe 20 20
mode z_mapped
set colors.window_index 3
set colors.color_index 9
clear_color
clear_depth
draw_dci_polytriangle 10 10 300  14 10 300  10 14 300
probe 10 13
probe 20 20
mode mapped
probe 20 20
)");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(lines_of(result.out), (std::vector<std::string>{
                                      "probe 10 13 color=200,100,50,255 depth=300",
                                      "probe 20 20 color=0,0,0,255 depth=65535",
                                      "probe 10 13 index=9 depth=300",
                                      "probe 20 20 index=3 depth=65535",
                                      "probe 20 20 index=3",
                                  }));
}

TEST_F(Tool, DepthSettersReachTheRenderer) {
  // Equal depths: test 1 (below) refuses, test 2 (at or below) passes.
  const Outcome result = run_script(R"(
window 32 24
mode z_rgb32
clear_color
clear_depth
set colors.color 255 0 0 255
draw_dci_polytriangle 10 10 500  14 10 500  10 14 500
depth_test 1
set colors.color 0 255 0 255
draw_dci_polytriangle 10 10 500  14 10 500  10 14 500
probe 10 13
depth_test 2
draw_dci_polytriangle 10 10 500  14 10 500  10 14 500
probe 10 13
)");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(lines_of(result.out), (std::vector<std::string>{"probe 10 13 color=255,0,0,255 depth=500",
                                                            "probe 10 13 color=0,255,0,255 depth=500"}));
}

TEST_F(Tool, OriginShiftsDeviceCoordinates) {
  const Outcome result = run_script(R"(
origin 100 50
window 32 24
mode rgb32
clear_color
draw_dci_polytriangle 110 60 0  114 60 0  110 64 0
probe 110 63
probe 111 63
echo done
)");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(lines_of(result.out), (std::vector<std::string>{"probe 110 63 color=255,255,255,255",
                                                            "probe 111 63 color=0,0,0,255", "done"}));
}

TEST_F(Tool, UpdateReportsTheRegionInWindowCoordinates) {
  const Outcome result = run_script("window 64 100\nupdate 10 20 5 15\n");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "update first=10,15 last=20,5 x=10 y=84\n");
}

TEST_F(Tool, SavesColourTopRowFirst) {
  // Only the top device row (y 3) is cleared to red.
  write_script(R"(
window 8 4
mode rgb32
set colors.window_color 0 0 0 255
clear_color
set device.hard_clip 0 7 3 3
set colors.window_color 255 0 0 255
clear_color
save color colour.png
)");
  const Outcome result = run({"--output-dir", (dir_ / "out").string(), (dir_ / "script.tarn").string()});
  ASSERT_EQ(result.status, 0) << result.err;
  Picture picture;
  ASSERT_TRUE(read_png(dir_ / "out" / "colour.png", picture));
  ASSERT_EQ(picture.width, 8);
  ASSERT_EQ(picture.height, 4);
  EXPECT_EQ(picture.at(0, 0), (std::array<int, 3>{255, 0, 0}));
  EXPECT_EQ(picture.at(7, 0), (std::array<int, 3>{255, 0, 0}));
  EXPECT_EQ(picture.at(0, 1), (std::array<int, 3>{0, 0, 0}));
  EXPECT_EQ(picture.at(7, 3), (std::array<int, 3>{0, 0, 0}));
  EXPECT_EQ(png_header(dir_ / "out" / "colour.png").color_type, PNG_COLOR_TYPE_RGB);
}

TEST_F(Tool, SavesMappedColourThroughThePalette) {
  const Outcome result = run_script(
      "window 6 5\nmode mapped\npalette default\nset colors.window_index 9\nclear_color\n"
      "save color " +
      (dir_ / "mapped.png").string() + "\n");
  ASSERT_EQ(result.status, 0) << result.err;
  Picture picture;
  ASSERT_TRUE(read_png(dir_ / "mapped.png", picture));
  const OT_RGB32 expected = OB_Default_Palette().color(9);
  EXPECT_EQ(picture.at(3, 2), (std::array<int, 3>{expected.r, expected.g, expected.b}));
}

TEST_F(Tool, SavesDepthAsSixteenBitGreyNearIsDark) {
  // Depth 0 on the top device row (y 11), the clear value 0xFFFF elsewhere.
  std::string zeros;
  for (int i = 0; i < 16; ++i) zeros += " 0";
  const Outcome result = run_script(
      "window 16 12\nmode z_rgb32\nclear_color\nclear_depth\n"
      "write_depth_rectangle 0 11 0  15 11 0 depths" +
      zeros +
      "\nprobe 3 11\nprobe 3 10\n"
      "save depth " +
      (dir_ / "depth.png").string() +
      "\n"
      "save color " +
      (dir_ / "rgba.png").string() + " alpha\n");
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(lines_of(result.out), (std::vector<std::string>{"probe 3 11 color=0,0,0,255 depth=0",
                                                            "probe 3 10 color=0,0,0,255 depth=65535"}));
  const Png_Header header = png_header(dir_ / "depth.png");
  EXPECT_EQ(header.width, 16u);
  EXPECT_EQ(header.height, 12u);
  EXPECT_EQ(header.bit_depth, 16);
  EXPECT_EQ(header.color_type, PNG_COLOR_TYPE_GRAY);
  Picture picture;
  ASSERT_TRUE(read_png(dir_ / "depth.png", picture));
  EXPECT_EQ(picture.at(5, 0), (std::array<int, 3>{0, 0, 0}));
  EXPECT_EQ(picture.at(5, 1), (std::array<int, 3>{255, 255, 255}));
  EXPECT_EQ(picture.at(15, 11), (std::array<int, 3>{255, 255, 255}));
  EXPECT_EQ(png_header(dir_ / "rgba.png").color_type, PNG_COLOR_TYPE_RGB_ALPHA);
}

TEST_F(Tool, SavingDepthWithoutADepthBufferIsAnError) {
  const Outcome result = run_script("window 8 8\nmode rgb32\nsave depth d.png\n");
  EXPECT_EQ(result.status, 2);
  EXPECT_NE(result.err.find("script.tarn:3: save: the renderer has no depth buffer"), std::string::npos)
      << result.err;
}

TEST_F(Tool, RendersTheDemo) {
  const fs::path out = dir_ / "demo";
  const Outcome result = run({"--output-dir", out.string(), TARN_EXAMPLES_DIR "/demo.tarn"});
  ASSERT_EQ(result.status, 0) << result.err;
  const std::vector<std::string> lines = lines_of(result.out);
  auto has = [&](const std::vector<std::string>& printed, const std::string& line) {
    return std::find(printed.begin(), printed.end(), line) != printed.end();
  };
  // Where the red and blue bands cross: blue drawn last without depth, red
  // (the nearer) with it.
  EXPECT_TRUE(has(lines, "probe 65 428 color=40,170,230,160 depth=65535")) << result.out;
  EXPECT_TRUE(has(lines, "probe 65 172 color=230,60,50,200 depth=1000")) << result.out;
  EXPECT_TRUE(has(lines, "probe 65 172 index=39")) << result.out;
  EXPECT_TRUE(has(lines, "probe 321 172 index=203 depth=1000")) << result.out;
  const Png_Header rgb32 = png_header(out / "demo-rgb32.png");
  EXPECT_EQ(rgb32.width, 512u);
  EXPECT_EQ(rgb32.height, 512u);
  const Png_Header depth = png_header(out / "demo-depth.png");
  EXPECT_EQ(depth.bit_depth, 16);
  const Png_Header mapped = png_header(out / "demo-mapped.png");
  EXPECT_EQ(mapped.width, 512u);
  EXPECT_EQ(mapped.height, 256u);

  // The other example scripts run through and write their pictures.
  struct Example {
    const char* name;
    std::uint32_t width, height;  // of NAME-rgb32.png; NAME-mapped.png is half as high
  };
  const Example examples[] = {
      {"patterns", 800, 300}, {"lines", 512, 400},  {"polygons", 512, 336},
      {"clipping", 512, 352}, {"layers", 512, 352},
  };
  std::vector<std::string> probes;
  for (const Example& example : examples) {
    SCOPED_TRACE(example.name);
    const Outcome other =
        run({"--output-dir", out.string(), std::string(TARN_EXAMPLES_DIR "/") + example.name + ".tarn"});
    ASSERT_EQ(other.status, 0) << other.err;
    for (const std::string& line : lines_of(other.out)) probes.push_back(line);
    const Png_Header colour = png_header(out / (std::string(example.name) + "-rgb32.png"));
    EXPECT_EQ(colour.width, example.width);
    EXPECT_EQ(colour.height, example.height);
    const Png_Header indexed = png_header(out / (std::string(example.name) + "-mapped.png"));
    EXPECT_EQ(indexed.width, example.width);
    EXPECT_EQ(indexed.height, example.height / 2);
  }
  // Pattern 16 in z_rgb32: a drawn pixel, a hole that keeps the cleared
  // depth, a hole in the contrast colour.
  EXPECT_TRUE(has(probes, "probe 8 40 color=240,210,60,255 depth=300"));
  EXPECT_TRUE(has(probes, "probe 9 40 color=40,44,52,255 depth=65535"));
  EXPECT_TRUE(has(probes, "probe 37 40 color=200,50,60,255 depth=300"));
  // Merge control: cyan and magenta ink make blue, all three black; in the
  // mapped panel the AND of all three is the palette's black.
  EXPECT_TRUE(has(probes, "probe 65 266 color=0,0,255,255 depth=65535"));
  EXPECT_TRUE(has(probes, "probe 65 250 color=0,0,0,255 depth=65535"));
  EXPECT_TRUE(has(probes, "probe 65 74 index=0"));
  // Depth bias -2000 brings a square 1000 behind the plate in front of it.
  EXPECT_TRUE(has(probes, "probe 148 118 color=110,116,130,255 depth=30000"));
  EXPECT_TRUE(has(probes, "probe 238 118 color=230,60,50,255 depth=29000"));
}

TEST_F(Tool, EverySlotOfTheTableIsACommand) {
  const Outcome result = run({"--list"});
  ASSERT_EQ(result.status, 0) << result.err;
  const std::vector<std::string> lines = lines_of(result.out);
  std::vector<std::string> slots;
  for (const std::string& line : lines)
    if (line.starts_with("slot ")) slots.push_back(line.substr(5));
#define TARN_TEST_SLOT_NAME(name, ...) #name,
  const std::vector<std::string> expected{OT_ACTION_SLOTS(TARN_TEST_SLOT_NAME)};
#undef TARN_TEST_SLOT_NAME
  EXPECT_EQ(slots, expected);
  EXPECT_NE(std::find(lines.begin(), lines.end(), "command probe"), lines.end());
  EXPECT_NE(std::find(lines.begin(), lines.end(), "set colors.color R G B A"), lines.end());
}

// ---- Mistakes in scripts ---------------------------------------------------------

struct Mistake {
  const char* script;
  const char* message;  // the whole first line of stderr after the script's name
};

TEST_F(Tool, MistakesStopWithTheLineAndWhatWasExpected) {
  const Mistake mistakes[] = {
      {"window 32 24\n\n# comment\nfrobnicate 1 2\n", ":4: unknown command 'frobnicate'"},
      {"window 32\n", ":1: window: expected 2 integers W H, got 1"},
      {"window 32 x2\n", ":1: window: H: expected an integer, got 'x2'"},
      {"window 32 24\nset colors.color 1 2 3\n", ":2: set colors.color: expected 4 integers R G B A, got 3"},
      {"window 32 24\nset colors.color 1 2 3 256\n", ":2: set colors.color: A: 256 is out of range 0..255"},
      {"window 32 24\nset colors.colour 1 2 3 4\n",
       ":2: set: unknown field 'colors.colour'; the fields of colors are colors.color, colors.color_index, "
       "colors.contrast_color, colors.contrast_index, colors.window_color, colors.window_index, "
       "colors.material"},
      {"window 32 24\nmode truecolor\n",
       ":2: mode: unknown mode 'truecolor'; the modes are rgb32_alpha, rgb32, mapped, z_mapped, "
       "z_rgb32_alpha, "
       "z_rgb32"},
      {"window 32 24\nprobe 32 0\n", ":2: probe: 32 0 lies outside the window 0 31 0 23 (L R B T)"},
      {"draw_dci_polytriangle 1 1 0 2 1 0 1 2 0\n",
       ":1: draw_dci_polytriangle: no window yet: the script must set one with `window W H` first"},
      {"window 32 24\ndraw_dci_polytriangle 1 1 0 2 1 0 1 2\n",
       ":2: draw_dci_polytriangle: expected points as x y z triples, got 8 numbers"},
      {"window 32 24\ndraw_dci_polytriangle 1 1 0 2 1.5 0 1 2 0\n",
       ":2: draw_dci_polytriangle: point 2 y: expected an integer, got '1.5'"},
      {"window 32 24\ndraw_dci_polytriangle 1 1 0 40 1 0 1 2 0\n",
       ":2: draw_dci_polytriangle: point 2 (40, 1) lies outside hard_clip 0 31 0 23; DC and DCI slots take "
       "only "
       "points inside it (the 2D and 2DI forms clip)"},
      {"window 32 24\ndraw_dci_colorized_polytriangle 1 1 0 2 1 0 1 2 0 2 2 0 colors 1 2 3 4\n",
       ":2: draw_dci_colorized_polytriangle colors: expected 2 colours (one a triangle), got 1"},
      {"window 32 24\ndraw_dci_polytriangle 1 1 0 2 1 0 1 2 0 single\n",
       ":2: draw_dci_polytriangle: `single` is not an argument of this slot"},
      {"window 32 24\ndraw_dci_textured_polytriangle 1 1 0 2 1 0 1 2 0\n",
       ":2: slot draw_dci_textured_polytriangle: argument kind not scriptable yet"},
      {"window 32 24\nclear_color now\n", ":2: clear_color: expected no arguments, got 1"},
      {"window 32 24\noption \"No Such Option\" 1\n",
       ":2: option: the renderer has no option \"No Such Option\""},
      {"window 32 24\noption \"Use Mask\" 7\n",
       ":2: option \"Use Mask\": value: expected 0, 1, true or false, got '7'"},
      {"window 32 24\noption \"ZBuffer Test\" null\n",
       ":2: option: \"ZBuffer Test\" holds the renderer's setter; use the command depth_test"},
      {"window 32 24\noption \"Color Buffer\" null\n",
       ":2: option: \"Color Buffer\" is where the renderer shows its colour image to probe and save; scripts "
       "don't "
       "set it"},
      {"window 32 24\nset device.hard_clip 0 40 0 23\nclear_color\n",
       ":3: clear_color: device.hard_clip 0 40 0 23 must be a rectangle inside the window 0 31 0 23"},
      {"window 32 24\necho \"unclosed\n", ":2: a quoted string is not closed"},
  };
  for (const Mistake& mistake : mistakes) {
    SCOPED_TRACE(mistake.script);
    const fs::path script = write_script(mistake.script);
    const Outcome result = run({script.string()});
    EXPECT_EQ(result.status, 2);
    const std::vector<std::string> lines = lines_of(result.err);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines[0], script.string() + mistake.message);
  }
}

TEST_F(Tool, CommandsBeforeAMistakeHaveRun) {
  const Outcome result = run_script("echo first \"two  spaces\"\nwindow 8 8\nwindow\necho never\n");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "first two  spaces\n");
  EXPECT_NE(result.err.find("script.tarn:3: window: expected 2 integers W H, got 0"), std::string::npos);
}

TEST_F(Tool, AValidOptionIsAccepted) {
  const Outcome result = run_script(
      "window 8 8\noption \"Margin\" 3\noption \"Merge Control Background Color\" 1 2 3\n"
      "option \"Use Mask\" true\noption \"Depth Buffer\" null\noption \"Mask Cache\" null\n"
      "probe 0 0\n");
  EXPECT_EQ(result.status, 0) << result.err;
}

TEST_F(Tool, AMissingScriptExitsWithStatusTwo) {
  const std::string missing = (dir_ / "no-such.tarn").string();
  const Outcome result = run({missing});
  EXPECT_EQ(result.status, 2);
  EXPECT_NE(result.err.find(missing), std::string::npos) << result.err;
}

TEST_F(Tool, ABadCommandLineExitsWithStatusTwo) {
  EXPECT_EQ(run({}).status, 2);
  EXPECT_EQ(run({"--frob", "x.tarn"}).status, 2);
  EXPECT_EQ(run({"a.tarn", "b.tarn"}).status, 2);
}

TEST_F(Tool, AModuleThatDoesNotLoadExitsWithStatusOne) {
  const Outcome result =
      run({"--module", (dir_ / "missing.obx").string(), write_script("window 8 8\n").string()});
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("missing.obx"), std::string::npos) << result.err;
}

TEST_F(Tool, AnUnwritablePictureExitsWithStatusOne) {
  const Outcome result = run_script("window 8 8\nsave color " + (dir_ / "no-dir" / "x.png").string() + "\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("script.tarn:2: save: cannot write"), std::string::npos) << result.err;
}

}  // namespace
