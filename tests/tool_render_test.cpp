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
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "host/ombra.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;

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

// A PNG read back as 8-bit RGB, with what its file held.
struct Picture {
  int width = 0, height = 0;
  bool alpha = false, sixteen_bits = false, grey = false;
  std::vector<std::uint8_t> rgb;  // top row first
  std::array<int, 3> at(int x, int y) const {
    const std::size_t i = (std::size_t(y) * width + x) * 3;
    return {rgb[i], rgb[i + 1], rgb[i + 2]};
  }
};

Picture read_png(const fs::path& path) {
  Picture picture;
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&image, path.c_str())) return picture;
  picture.alpha = image.format & PNG_FORMAT_FLAG_ALPHA;
  picture.sixteen_bits = image.format & PNG_FORMAT_FLAG_LINEAR;
  picture.grey = !(image.format & PNG_FORMAT_FLAG_COLOR);
  image.format = PNG_FORMAT_RGB;
  picture.rgb.resize(PNG_IMAGE_SIZE(image));
  if (png_image_finish_read(&image, nullptr, picture.rgb.data(), 0, nullptr)) {
    picture.width = int(image.width);
    picture.height = int(image.height);
  }
  return picture;
}

struct Outcome {
  int status = -1;
  std::string out, err;
};

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

  // Writes `text` as script.tarn, with every @ standing for the folder.
  fs::path write_script(std::string text) {
    for (std::size_t at; (at = text.find('@')) != text.npos;) text.replace(at, 1, dir_.string());
    std::ofstream(dir_ / "script.tarn") << text;
    return dir_ / "script.tarn";
  }

  // Runs tarn-render with `args`, standard input from `input`.
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
    int status = 0;
    if (spawned != 0 || waitpid(pid, &status, 0) != pid) return result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = read_file(out);
    result.err = read_file(err);
    return result;
  }

  fs::path dir_;
};

// A script, and what tarn-render answers: its status, all it prints, and
// the first line of its errors after the script's name.
struct Script_Run {
  const char* script;
  int status;
  const char* out;
  const char* err;
};

// A quad over pixels 0..15 of a 17 x 17 window whose texel coordinates
// stand half a texel inside the checkerboard's texels, u and v 0..2 over it,
// v 0 at the bottom.
#define TEXTURED_QUAD                                                                              \
  "draw_dci_textured_polytriangle 0 16 0 0.0078125 2.0078125  16 16 0 2.0078125 2.0078125  0 0 0 " \
  "0.0078125 0.0078125  16 0 0 2.0078125 0.0078125"

// The triangle (10,10), (14,10), (10,14): spans are half open on the right
// and rows at the top, so row 13 holds x 10 alone and neither (14,10) nor
// (10,14) is drawn.
const Script_Run kRuns[] = {
    {"window 32 24\nmode rgb32\nset colors.color 10 20 30 255\nclear_color\n"
     "draw_dci_polytriangle 10 10 0  14 10 0  10 14 0\nprobe 10 13\nprobe 11 13\nprobe 14 10\nprobe 10 "
     "14\n",
     0,
     "probe 10 13 color=10,20,30,255\nprobe 11 13 color=0,0,0,255\nprobe 14 10 color=0,0,0,255\n"
     "probe 10 14 color=0,0,0,255\n",
     ""},
    // Depth in the depth modes, indices in the mapped ones.
    {"window 32 24\nmode z_rgb32\nset colors.color 200 100 50 255\nclear_color\nclear_depth\n"
     "draw_dc_polytriangle 10 10 300  14 10 300  10 14 300\nprobe 10 13\nprobe 20 20\n"
     "mode z_mapped\nset colors.window_index 3\nset colors.color_index 9\nclear_color\nclear_depth\n"
     "draw_dci_polytriangle 10 10 300  14 10 300  10 14 300\nprobe 10 13\nprobe 20 20\nmode "
     "mapped\nprobe 20 "
     "20\n",
     0,
     "probe 10 13 color=200,100,50,255 depth=300\nprobe 20 20 color=0,0,0,255 depth=65535\n"
     "probe 10 13 index=9 depth=300\nprobe 20 20 index=3 depth=65535\nprobe 20 20 index=3\n",
     ""},
    // Equal depths: test 1 (below) refuses, test 2 (at or below) passes.
    {"window 32 24\nclear_color\nclear_depth\nset colors.color 255 0 0 255\n"
     "draw_dci_polytriangle 10 10 500  14 10 500  10 14 500\ndepth_test 1\nset colors.color 0 255 0 "
     "255\n"
     "draw_dci_polytriangle 10 10 500  14 10 500  10 14 500\nprobe 10 13\ndepth_test 2\n"
     "draw_dci_polytriangle 10 10 500  14 10 500  10 14 500\nprobe 10 13\n",
     0, "probe 10 13 color=255,0,0,255 depth=500\nprobe 10 13 color=0,255,0,255 depth=500\n", ""},
    {"origin 100 50\nwindow 32 24\nmode rgb32\nclear_color\ndraw_dci_polytriangle 110 60 0  114 60 0  "
     "110 64 "
     "0\n"
     "probe 110 63\nprobe 111 63\necho done\n",
     0, "probe 110 63 color=255,255,255,255\nprobe 111 63 color=0,0,0,255\ndone\n", ""},
    {"window 64 100\nupdate 10 20 5 15\n", 0, "update first=10,15 last=20,5 x=10 y=84\n", ""},
    {"window 8 8\noption \"Margin\" 3\noption \"Merge Control Background Color\" 1 2 3\n"
     "option \"Use Mask\" true\noption \"Depth Buffer\" null\noption \"Mask Cache\" null\nprobe 0 0\n",
     0, "probe 0 0 color=0,0,0,0 depth=0\n", ""},

    // Textures in rgb32, a mode without depth, where the host's routine
    // draws them. The checkerboard (squares of 8 texels, cream and teal) is
    // mapped so that pixel x meets texel column 8x + 0.5: square x mod 8;
    // v runs up from the last row, so row y meets square row 7 - y mod 8.
    // Pixel 9 lies past u 1: repeated with the default wrap, left out with
    // wrap 0 0. Lit by ambient 0.5 alone it is half as bright; with
    // modulation it takes the red of the point colours; rows 24..39 of the
    // board (y 4) have alpha 96. Wrap 1 (the host's own) holds the last column,
    // where repeat would have reached square 2.
    {"mode rgb32\nwindow 17 17\ntexture " TARN_EXAMPLES_DIR "/checker.png\n" TEXTURED_QUAD "\n"
     "probe 1 6\nprobe 2 6\nprobe 9 6\nprobe 1 4\n"
     "light ambient 0.5 0.5 0.5\n" TEXTURED_QUAD " normals 0 0 -1  0 0 -1  0 0 -1  0 0 -1\nprobe 1 6\n"
     "light none\n" TEXTURED_QUAD " normals 0 0 -1  0 0 -1  0 0 -1  0 0 -1\nprobe 1 6\n"
     "texture " TARN_EXAMPLES_DIR "/checker.png wrap 0 0 modulate\nclear_color\n" TEXTURED_QUAD
     " colors 255 0 0 255  255 0 0 255  255 0 0 255  255 0 0 255\nprobe 1 6\nprobe 9 6\n"
     "set colors.material none\nset colors.color 1 2 3 255\n" TEXTURED_QUAD "\nprobe 9 6\n"
     "texture " TARN_EXAMPLES_DIR "/checker.png wrap 1 1\n" TEXTURED_QUAD "\nprobe 10 6\n",
     0,
     "probe 1 6 color=240,226,190,255\nprobe 2 6 color=30,110,130,255\nprobe 9 6 color=240,226,190,255\n"
     "probe 1 4 color=240,226,190,96\nprobe 1 6 color=120,113,95,255\nprobe 1 6 color=240,226,190,255\n"
     "probe 1 6 color=240,0,0,255\nprobe 9 6 color=0,0,0,255\nprobe 9 6 color=1,2,3,255\n"
     "probe 10 6 color=240,226,190,255\n",
     ""},
    // w 1 on the left and 3 on the right: u and v are divided by w across
    // the triangle. At (8, 6), 1/w is 2/3 and the lower triangle's u/w and
    // v/w planes give u 0.5078125 and v 0.3828125: texel column 32, row
    // 63 - 24 (squares 4 and 4, in the translucent band), where the affine
    // u 1.0078125 and v 0.7578125 reach column 0 and row 15 (teal).
    {"mode rgb32\nwindow 17 17\ntexture " TARN_EXAMPLES_DIR "/checker.png\n" TEXTURED_QUAD
     " w 1 3 1 3\nprobe 8 6\n" TEXTURED_QUAD "\nprobe 8 6\n",
     0, "probe 8 6 color=240,226,190,96\nprobe 8 6 color=30,110,130,255\n", ""},
    // Images in the forms that the host clips: only the pixels inside the
    // hard clip are drawn.
    {"window 8 8\nmode rgb32\nclear_color\nset device.hard_clip 0 7 0 3\n"
     "draw_2di_rgb32_image -1 4 0  0 3 0 pixels 1 1 1 255  2 2 2 255  3 3 3 255  4 4 4 255\n"
     "draw_2d_index8_image 6 3 0  8 3 0 pixels 9 9 9\nprobe 0 4\nprobe 0 3\nprobe 7 3\n",
     0, "probe 0 4 color=0,0,0,255\nprobe 0 3 color=4,4,4,255\nprobe 7 3 color=255,0,0,255\n", ""},

    // A dashed line: the pieces 0-10 and 15-25 with their last points, then
    // the same line solid again (after a set whose round is 1 long, the
    // shortest the tool takes). The halo material: a thin line is drawn
    // last in its own colour, a wide one (the host's, one dot a pixel) in
    // the material's inner colour.
    {"window 40 8\nmode rgb32_alpha\nclear_color\nset line.line_type_set type 10 -5\n"
     "draw_dci_polyline 0 2 0 30 2 0\nprobe 10 2\nprobe 12 2\nprobe 15 2\nprobe 25 2\nprobe 26 2\n"
     "set line.line_type_set type 0.5 -0.5\nset line.line_type_set none\ndraw_dci_polyline 0 3 0 30 3 0\n"
     "probe 12 3\n"
     "set colors.material halo 1 0 255 0 255 0 0 255 255\nset colors.color 9 9 9 255\n"
     "draw_2di_polyline 0 5 0 30 5 0\nprobe 12 5\nset line.weight 3\ndraw_dci_polyline 0 6 0 30 6 0\n"
     "probe 12 6\n",
     0,
     "probe 10 2 color=255,255,255,255\nprobe 12 2 color=0,0,0,255\nprobe 15 2 color=255,255,255,255\n"
     "probe 25 2 color=255,255,255,255\nprobe 26 2 color=0,0,0,255\nprobe 12 3 color=255,255,255,255\n"
     "probe 12 5 color=9,9,9,255\nprobe 12 6 color=0,0,255,255\n",
     ""},

    // Reads print what comes back, rows in storage order, top first. An
    // RGB32 read holds its top row below its height: rows 3 down to 2 copy
    // nothing, rows 2 down to 1 copy row 1 alone; rows left alone stay as
    // the tool made them, zero. The depth read copies in full. A format
    // that the buffer doesn't serve gives no image.
    {"window 4 4\nmode z_rgb32\nset colors.window_color 9 8 7 255\nclear_color\nclear_depth\n"
     "draw_dci_polytriangle 0 0 5  3 0 5  0 3 5\nread_color_rectangle 0 3 0  3 2 0\n"
     "read_color_rectangle 1 2 0  2 1 0\nread_depth_rectangle 0 1 0  1 0 0 format 3\n"
     "read_color_rectangle 0 3 0  1 2 0 format 1\n",
     0,
     "read_color_rectangle format=2 width=4 height=2\nrow 0: 0,0,0,0 0,0,0,0 0,0,0,0 0,0,0,0\n"
     "row 1: 0,0,0,0 0,0,0,0 0,0,0,0 0,0,0,0\n"
     "read_color_rectangle format=2 width=2 height=2\nrow 0: 255,255,255,255 9,8,7,255\nrow 1: 0,0,0,0 "
     "0,0,0,0\n"
     "read_depth_rectangle format=3 width=2 height=2\nrow 0: 5 5\nrow 1: 5 5\nread_color_rectangle none\n",
     ""},

    // Mistakes stop the run with status 2, the line and what was expected;
    // what came before has run.
    {"echo first \"two  spaces\"\nwindow 8 8\nwindow\necho never\n", 2, "first two  spaces\n",
     ":3: window: expected 2 integers W H, got 0"},
    {"draw_dci_polytriangle 1 1 0 2 1 0 1 2 0\n", 2, "",
     ":1: draw_dci_polytriangle: no window yet: the script must set one with `window W H` first"},
    {"texture " TARN_EXAMPLES_DIR "/checker.png wrap 2\n", 2, "",
     ":1: texture: `wrap` takes 2 integers WU WV"},
    {"texture " TARN_EXAMPLES_DIR "/checker.png shiny\n", 2, "", ":1: texture: unexpected 'shiny'"},
    {"material basic specular 1 1\n", 2, "", ":1: material: `specular` takes 3 numbers R G B"},
    {"material basic shininess -2\n", 2, "", ":1: material: shininess: -2 is below 0"},
    {"light directional 0 0 0 1 1 1\n", 2, "", ":1: light directional: the direction 0 0 0 points nowhere"},
    {"light ambient 1 1\n", 2, "", ":1: light ambient: expected 3 numbers R G B (0 or more), got 2"},
    {"light spot 1 1 1\n", 2, "", ":1: light: expected `ambient R G B`, `directional X Y Z R G B` or `none`"},
    // What fails outside the script gives status 1.
    {"window 8 8\nsave color @/no-dir/x.png\n", 1, "", ":2: save: cannot write"},
};

// Lines after `window 32 24` that stop the run with status 2, and what the
// error says after the script's name and the line number.
const std::pair<const char*, const char*> kMistakes[] = {
    {"\n# comment\nfrobnicate 1 2", "unknown command 'frobnicate'"},
    {"window 32 x2", "window: H: expected an integer, got 'x2'"},
    {"set colors.color 1 2 3 256", "set colors.color: A: 256 is out of range 0..255"},
    {"set colors.colour 1 2 3 4",
     "set: unknown field 'colors.colour'; the fields of colors are colors.color, "},
    {"mode truecolor",
     "mode: unknown mode 'truecolor'; the modes are rgb32_alpha, rgb32, mapped, z_mapped, "},
    {"probe 32 0", "probe: 32 0 lies outside the window 0 31 0 23 (L R B T)"},
    {"draw_dci_polytriangle 1 1 0 2 1 0 1 2",
     "draw_dci_polytriangle: expected points as x y z triples, got 8"},
    {"draw_dci_polytriangle 1 1 0 2 1.5 0 1 2 0",
     "draw_dci_polytriangle: point 2 y: expected an integer, got '1.5'"},
    {"draw_dci_polytriangle 1 1 0 40 1 0 1 2 0",
     "draw_dci_polytriangle: point 2 (40, 1) lies outside hard_clip 0 31 0 23; DC and DCI slots take "},
    {"draw_dci_colorized_polytriangle 1 1 0 2 1 0 1 2 0 2 2 0 colors 1 2 3 4",
     "draw_dci_colorized_polytriangle colors: expected 2 colours (one a triangle), got 1"},
    {"draw_dci_polytriangle 1 1 0 2 1 0 1 2 0 single",
     "draw_dci_polytriangle: `single` is not an argument of"},
    {"read_color_rectangle 0 1 0 32 0 0",
     "read_color_rectangle: the block must lie inside the window 0 31 0 23: nothing cuts its right side"},
    {"mode rgb32\nread_depth_rectangle 0 1 0 1 0 0",
     "read_depth_rectangle: the renderer has no depth buffer in this mode"},
    {"draw_dci_textured_polytriangle 1 1 0 0 0  2 1 0 0 0  1 2 0 0",
     "draw_dci_textured_polytriangle: expected points as x y z u v quintuples, got 14 numbers"},
    {"draw_2di_textured_polytriangle 1 1 0 0 0  2 1 0 0 0",
     "draw_2di_textured_polytriangle: expected at least 3 points (x y z u v each), got 2"},
    {"draw_dc_textured_polytriangle 1 1 0 0 0  2 1 0 0 0  1 2 0 0 0 w 1 1",
     "draw_dc_textured_polytriangle w: expected 3 numbers (one a point), got 2"},
    {"draw_2d_textured_polytriangle 1 1 0 0 0  2 1 0 0 0  1 2 0 0 0 normals 0 0 -1 0 0 -1 0 0",
     "draw_2d_textured_polytriangle normals: expected 3 normals X Y Z (one a point), got 8 numbers"},
    {"draw_dci_textured_polytriangle 1 1 0 0 0  2 1 0 0 0  1 2 0 0 0 colors 1 2 3 4",
     "draw_dci_textured_polytriangle colors: expected 3 colours (one a point), got 1"},
    {"draw_dci_textured_polytriangle 1 1 0 0 0  2 1 0 0 0  40 2 0 0 0",
     "draw_dci_textured_polytriangle: point 3 (40, 2) lies outside hard_clip 0 31 0 23"},
    {"texture /nonexistent/x.png", "texture: cannot read /nonexistent/x.png: no such file"},
    {"texture " TARN_EXAMPLES_DIR "/demo.tarn",
     "texture: cannot read " TARN_EXAMPLES_DIR "/demo.tarn: not a PNG file"},
    {"draw_dc_index8_image 30 5 0 33 5 0 pixels 1 2 3 4",
     "draw_dc_index8_image: the block must lie inside hard_clip 0 31 0 23 in the DC form"},
    // After a depth mode, a mode without depth keeps the depth mode's
    // textured actions, which must not be called.
    {"mode rgb32\ndraw_2d_textured_polytriangle 1 1 0 0 0  2 1 0 0 0  1 2 0 0 0",
     "draw_2d_textured_polytriangle: the textured slots still hold the actions of an earlier depth mode"},
    // An index image in an RGB32 mode is the host's, which cuts nothing.
    {"mode rgb32\ndraw_dci_index8_image 30 5 0 32 5 0 pixels 1 2 3",
     "draw_dci_index8_image: the block must lie inside the window 0 31 0 23: nothing cuts its right side"},
    {"draw_2d_rgb32_image 1.5 5 0 2 5 0 pixels 1 2 3 4",
     "draw_2d_rgb32_image: the corners' x and y must be whole numbers"},
    {"option \"No Such Option\" 1", "option: the renderer has no option \"No Such Option\""},
    {"option \"Use Mask\" 7", "option \"Use Mask\": value: expected 0, 1, true or false, got '7'"},
    {"option \"ZBuffer Test\" null", "option: \"ZBuffer Test\" holds the renderer's setter; use the command"},
    {"option \"Color Buffer\" null", "option: \"Color Buffer\" is where the renderer shows its colour image"},
    {"set device.hard_clip 0 40 0 23\nclear_color",
     "clear_color: device.hard_clip 0 40 0 23 must be a rectangle inside the window 0 31 0 23"},
    {"set line.line_type_set per_segment",
     "set line.line_type_set: expected at least one `type LENGTH...` or `type none`"},
    {"set line.line_type_set type phase 2",
     "set line.line_type_set: type 1: expected `none` or at least one LENGTH"},
    {"set line.line_type_set type 10 -5 phase",
     "set line.line_type_set: type 1 phase: expected a value after it"},
    {"set line.line_type_set type 10 -5 dashes 3", "set line.line_type_set: type 1: unknown 'dashes'"},
    {"set line.line_type_set scale 0.5 type 1 -0.99",
     "set line.line_type_set: type 1: one round of the pattern is 0.995000 long after scaling"},
    {"set line.line_type_set type 1 -1 phase 2000001", "set line.line_type_set: type 1: phase is more than"},
    {"set line.line_type_set first 1 type 1 -1",
     "set line.line_type_set: first: 1 but there are only 1 types"},
    {"set line.line_type_set end 3 type 1 -1 type none",
     "set line.line_type_set: end: first 0 and end 3 need 3 types, there are 2"},
    {"set line.line_type_set skips 1,1 type 1 -1 type 1 -1",
     "set line.line_type_set: skips: slot numbers must ascend"},
    {"set line.line_type_set skips 2 type 1 -1 type 1 -1",
     "set line.line_type_set: skips: slot 2 is not below end 2"},
    {"set line.line_type_set other", "set line.line_type_set: unknown 'other'"},
    {"set line.line_type_set type 1 -1\ndraw_2di_polyline 0 0 0 1000000 1 0",
     "draw_2di_polyline: the line type set could cut this polyline into more than a million pieces"},
    {"echo \"unclosed", "a quoted string is not closed"},
    {"mode rgb32\nsave depth d.png", "save: the renderer has no depth buffer"},
};

TEST_F(Tool, ScriptsGiveTheirStatusOutputAndErrors) {
  for (const Script_Run& expected : kRuns) {
    SCOPED_TRACE(expected.script);
    const fs::path script = write_script(expected.script);
    const Outcome result = run({script.string()});
    EXPECT_EQ(result.status, expected.status);
    EXPECT_EQ(result.out, expected.out);
    const std::vector<std::string> err = lines_of(result.err);
    if (*expected.err) {
      ASSERT_FALSE(err.empty());
      EXPECT_TRUE(err[0].starts_with(script.string() + expected.err)) << err[0];
    } else {
      EXPECT_EQ(result.err, "");
    }
  }
  for (const auto& [lines, said] : kMistakes) {
    SCOPED_TRACE(lines);
    const fs::path script = write_script(std::string("window 32 24\n") + lines + "\n");
    const Outcome result = run({script.string()});
    const std::string line = std::to_string(2 + std::count(lines, lines + std::strlen(lines), '\n'));
    EXPECT_EQ(std::pair(result.status, result.out), std::pair(2, std::string()));
    EXPECT_TRUE(result.err.starts_with(script.string() + ":" + line + ": " + said)) << result.err;
  }
  // The same script from standard input.
  const Outcome piped = run({"-"}, write_script(kRuns[0].script));
  EXPECT_EQ(piped.status, 0);
  EXPECT_EQ(piped.out, kRuns[0].out);
}

TEST_F(Tool, CommandLineMistakesAndAModuleThatDoesNotLoad) {
  const std::string script = write_script("window 8 8\n").string(),
                    missing = (dir_ / "no-such.tarn").string();
  const std::tuple<std::vector<std::string>, int, std::string> runs[] = {
      {{}, 2, "usage"},
      {{"--frob", script}, 2, "--frob"},
      {{script, script}, 2, "one script"},
      {{missing}, 2, missing},
      {{"--module", (dir_ / "missing.obx").string(), script}, 1, "missing.obx"}};
  for (const auto& [args, status, said] : runs) {
    const Outcome result = run(args);
    EXPECT_EQ(result.status, status) << said;
    EXPECT_NE(result.err.find(said), std::string::npos) << result.err;
  }
}

TEST_F(Tool, SavesColourMappedAndDepthPicturesTopRowFirst) {
  // The top device row (y 3) red at depth 0; the rest black at the cleared
  // depth 0xFFFF; then the mapped image in palette index 9.
  const Outcome result = run({"--output-dir", (dir_ / "out").string(),
                              write_script(R"(window 8 4
set colors.window_color 0 0 0 255
clear_color
clear_depth
write_depth_rectangle 0 3 0  7 3 0 depths 0 0 0 0 0 0 0 0
set device.hard_clip 0 7 3 3
set colors.window_color 255 0 0 255
clear_color
save color colour.png
save color rgba.png alpha
save depth depth.png
mode mapped
set device.hard_clip 0 7 0 3
set colors.window_index 9
clear_color
save color mapped.png
)")
                                  .string()});
  ASSERT_EQ(result.status, 0) << result.err;
  const Picture colour = read_png(dir_ / "out" / "colour.png"), depth = read_png(dir_ / "out" / "depth.png");
  ASSERT_EQ(colour.width, 8);
  ASSERT_EQ(colour.height, 4);
  EXPECT_FALSE(colour.alpha);
  EXPECT_TRUE(read_png(dir_ / "out" / "rgba.png").alpha);
  EXPECT_TRUE(depth.sixteen_bits && depth.grey);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 8; ++x) {
      SCOPED_TRACE(::testing::Message() << x << "," << y);
      EXPECT_EQ(colour.at(x, y), (y == 0 ? std::array<int, 3>{255, 0, 0} : std::array<int, 3>{0, 0, 0}));
      EXPECT_EQ(depth.at(x, y), (y == 0 ? std::array<int, 3>{0, 0, 0} : std::array<int, 3>{255, 255, 255}));
    }
  const OT_RGB32 nine = OB_Default_Palette().color(9);
  EXPECT_EQ(read_png(dir_ / "out" / "mapped.png").at(3, 2), (std::array<int, 3>{nine.r, nine.g, nine.b}));
}

// Textures come from PNG files of every colour type and depth, found beside
// the script when named by a relative path; each is drawn by the host in
// rgb32 (2 x 2 texels over 8 x 8 pixels) and probed once in each texel.
TEST_F(Tool, TexturesReadEveryKindOfPng) {
  struct Kind {
    const char* name;
    png_uint_32 format;
    std::vector<std::uint8_t> pixels;    // rows top first
    std::vector<std::uint8_t> colormap;  // RGBA entries for a palette file
    const char* probes;                  // top left, top right, bottom left, bottom right texel
  };
  const Kind kinds[] = {
      {"rgba",
       PNG_FORMAT_RGBA,
       {10, 20, 30, 255, 40, 50, 60, 128, 70, 80, 90, 0, 100, 110, 120, 255},
       {},
       "10,20,30,255 40,50,60,128 70,80,90,0 100,110,120,255"},
      {"rgb",
       PNG_FORMAT_RGB,
       {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120},
       {},
       "10,20,30,255 40,50,60,255 70,80,90,255 100,110,120,255"},
      {"grey",
       PNG_FORMAT_GRAY,
       {0, 85, 170, 255},
       {},
       "0,0,0,255 85,85,85,255 170,170,170,255 255,255,255,255"},
      {"grey-alpha",
       PNG_FORMAT_GA,
       {7, 255, 9, 10, 200, 0, 255, 255},
       {},
       "7,7,7,255 9,9,9,10 200,200,200,0 255,255,255,255"},
      {"palette",
       PNG_FORMAT_RGBA_COLORMAP,
       {2, 0, 1, 2},
       {1, 2, 3, 255, 4, 5, 6, 77, 7, 8, 9, 255},
       "7,8,9,255 1,2,3,255 4,5,6,77 7,8,9,255"},
      // 16 bits a channel keep their high byte.
      {"sixteen",
       PNG_FORMAT_LINEAR_RGB,
       {0x00, 0x12, 0x34, 0xFF, 0xFF, 0xFF, 0x00, 0x80, 0x00, 0x00, 0xFF, 0xFF,
        0x12, 0x34, 0x00, 0x00, 0xAB, 0xCD, 0xFF, 0xFF, 0x01, 0x01, 0x00, 0x00},
       {},
       "0,52,255,255 0,0,255,255 18,0,171,255 255,1,0,255"},
  };
  for (const Kind& kind : kinds) {
    SCOPED_TRACE(kind.name);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = 2;
    image.height = 2;
    image.format = kind.format;
    image.colormap_entries = png_uint_32(kind.colormap.size() / 4);
    std::vector<std::uint8_t> pixels = kind.pixels;
    if (kind.format & PNG_FORMAT_FLAG_LINEAR) {
      // The linear format is written from 16-bit words of the machine.
      for (std::size_t i = 0; i < pixels.size(); i += 2) {
        const std::uint16_t word = std::uint16_t(pixels[i] << 8 | pixels[i + 1]);
        std::memcpy(&pixels[i], &word, 2);
      }
    }
    const fs::path file = dir_ / (std::string(kind.name) + ".png");
    ASSERT_TRUE(png_image_write_to_file(&image, file.c_str(), 0, pixels.data(), 0,
                                        kind.colormap.empty() ? nullptr : kind.colormap.data()))
        << image.message;
    const Outcome result =
        run({write_script("mode rgb32\nwindow 9 9\ntexture " + std::string(kind.name) +
                          ".png\n"
                          "draw_dci_textured_polytriangle 0 8 0 0 1  8 8 0 1 1  0 0 0 0 0  "
                          "8 0 0 1 0\nprobe 1 6\nprobe 6 6\nprobe 1 1\nprobe 6 1\n")
                 .string()});
    ASSERT_EQ(result.status, 0) << result.err;
    std::string colours;
    for (const std::string& line : lines_of(result.out))
      colours += (colours.empty() ? "" : " ") + line.substr(line.find('=') + 1);
    EXPECT_EQ(colours, kind.probes);
  }
}

// Every example runs through, writes NAME-rgb32.png and NAME-mapped.png (half
// as high), and prints the probes named here.
TEST_F(Tool, TheExamplesRender) {
  struct Example {
    const char* name;
    int width, height;
    const char* probes;  // one a line
  };
  const Example examples[] = {
      // Where the red and blue bands cross: blue drawn last without depth,
      // red (the nearer) with it.
      {"demo", 512, 512,
       "probe 65 428 color=40,170,230,160 depth=65535\nprobe 65 172 color=230,60,50,200 depth=1000\n"
       "probe 65 172 index=39\nprobe 321 172 index=203 depth=1000"},
      // Pattern 16 in z_rgb32: a drawn pixel, a hole that keeps the cleared
      // depth, a hole in the contrast colour.
      {"patterns", 800, 300,
       "probe 8 40 color=240,210,60,255 depth=300\nprobe 9 40 color=40,44,52,255 depth=65535\n"
       "probe 37 40 color=200,50,60,255 depth=300"},
      {"lines", 512, 400, ""},
      {"polygons", 512, 336, ""},
      {"clipping", 512, 352, ""},
      // Gouraud triangles with opposite depth slopes: the red one nearer on
      // the left, the blue one on the right; without depth blue covers.
      {"shading", 512, 512,
       "probe 164 65 color=224,68,76,255 depth=5229\nprobe 224 65 color=58,127,235,255 depth=7657\n"
       "probe 164 321 color=108,61,231,255 depth=65535"},
      // Merge control: cyan and magenta ink make blue, all three black, and
      // the palette's black when mapped. Depth bias -2000 brings a square
      // 1000 behind the plate in front of it.
      {"layers", 512, 352,
       "probe 65 266 color=0,0,255,255 depth=65535\nprobe 65 250 color=0,0,0,255 depth=65535\n"
       "probe 65 74 index=0\nprobe 148 118 color=110,116,130,255 depth=30000\n"
       "probe 238 118 color=230,60,50,255 depth=29000"},
      // A gap of a dashed line in rgb32_alpha; solid in rgb32, and blended
      // in z_rgb32_alpha, whose DCI lines with depth off are not cut.
      {"styled", 512, 400,
       "probe 307 316 color=40,44,52,255 depth=0\nprobe 51 316 color=230,60,150,255 depth=0\n"
       "probe 307 116 color=188,56,128,255 depth=65535"},
      // The first pixel of an RGB32 image stands at the ramp's first depth.
      {"textures", 512, 512, "probe 112 335 color=0,255,128,255 depth=2000"},
  };
  const fs::path out = dir_ / "out";
  for (const Example& example : examples) {
    SCOPED_TRACE(example.name);
    const std::string name = example.name;
    const Outcome result = run({"--output-dir", out.string(), TARN_EXAMPLES_DIR "/" + name + ".tarn"});
    ASSERT_EQ(result.status, 0) << result.err;
    const std::vector<std::string> printed = lines_of(result.out);
    for (const std::string& probe : lines_of(example.probes))
      EXPECT_NE(std::find(printed.begin(), printed.end(), probe), printed.end()) << probe;
    const Picture colour = read_png(out / (name + "-rgb32.png")),
                  mapped = read_png(out / (name + "-mapped.png"));
    EXPECT_EQ((std::array<int, 4>{colour.width, colour.height, mapped.width, mapped.height}),
              (std::array<int, 4>{example.width, example.height, example.width, example.height / 2}));
  }
  EXPECT_TRUE(read_png(out / "demo-depth.png").sixteen_bits);
}

}  // namespace
