// The desktop on SDL's drivers that need no display.
#include "Platform/Files.h"
#include "Platform/Library.h"
#include "Platform/Platform.h"

#include <SDL.h>
#include <gtest/gtest.h>

#include <atomic>

using namespace vesk;

namespace {

class Desktop : public testing::Test {
protected:
  Desktop() {
    SDL_SetHint(SDL_HINT_VIDEODRIVER, "offscreen");
    SDL_SetHint(SDL_HINT_AUDIODRIVER, "dummy");
    desktop = std::make_unique<CDesktopPlatform>();
    platform = desktop->Interfaces();
  }
  bool Open(Extent size) {
    WindowSettings settings;
    settings.title = "Title";
    settings.size = size;
    if (!platform.window->Create(settings)) return false;
    Drain(); // what the window says at its start
    return true;
  }
  std::vector<Message> Drain() {
    std::vector<Message> all;
    Message message;
    while (platform.messages->Next(message)) all.push_back(message);
    return all;
  }
  static void PushKey(SDL_Scancode scan, SDL_Keycode sym, bool down, Uint16 mod = 0, bool repeat = false) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.repeat = repeat;
    event.key.keysym = {scan, sym, mod, 0};
    SDL_PushEvent(&event);
  }
  std::unique_ptr<CDesktopPlatform> desktop;
  Platform platform;
};

} // namespace

TEST_F(Desktop, AWindowOpensAndItsContextDraws) {
  ASSERT_TRUE(Open({320, 180})) << platform.window->Failure();
  EXPECT_EQ(platform.window->Title(), "Title");
  ASSERT_TRUE(platform.window->CreateContext()) << platform.window->Failure();
  EXPECT_EQ(platform.window->DrawableSize().width, 320);
  using GetError = unsigned (*)();
  using ClearColor = void (*)(float, float, float, float);
  using Clear = void (*)(unsigned);
  using ReadPixels = void (*)(int, int, int, int, unsigned, unsigned, void*);
  reinterpret_cast<ClearColor>(SDL_GL_GetProcAddress("glClearColor"))(1, 0, 0, 1);
  reinterpret_cast<Clear>(SDL_GL_GetProcAddress("glClear"))(0x4000);
  unsigned char pixel[4] = {};
  reinterpret_cast<ReadPixels>(SDL_GL_GetProcAddress("glReadPixels"))(10, 10, 1, 1, 0x1908, 0x1401, pixel);
  EXPECT_EQ(pixel[0], 255);
  EXPECT_EQ(pixel[1], 0);
  EXPECT_EQ(reinterpret_cast<GetError>(SDL_GL_GetProcAddress("glGetError"))(), 0u);
  platform.window->Destroy();
  EXPECT_FALSE(platform.window->Exists());
  EXPECT_FALSE(platform.window->CreateContext());
}

TEST_F(Desktop, KeysBecomeVirtualKeyCodes) {
  ASSERT_TRUE(Open({64, 64}));
  const struct {
    SDL_Scancode scan;
    SDL_Keycode sym;
    Uint16 mod;
    int key;
  } keys[] = {
      {SDL_SCANCODE_LEFT, SDLK_LEFT, 0, 37},
      {SDL_SCANCODE_RETURN, SDLK_RETURN, 0, 13},
      {SDL_SCANCODE_Y, SDLK_z, 0, 'Z'},         // a layout where Y and Z are swapped
      {SDL_SCANCODE_1, SDLK_AMPERSAND, 0, '1'}, // a layout whose digits need shift
      {SDL_SCANCODE_F12, SDLK_F12, 0, 123},
      {SDL_SCANCODE_KP_4, SDLK_KP_4, KMOD_NUM, 100},
      {SDL_SCANCODE_KP_4, SDLK_KP_4, 0, 37},
      {SDL_SCANCODE_MINUS, SDLK_MINUS, 0, 189},
      {SDL_SCANCODE_A, 0x444 /* Cyrillic */, 0, 'A'},
  };
  for (const auto& row : keys) {
    PushKey(row.scan, row.sym, true, row.mod);
    const auto all = Drain();
    ASSERT_FALSE(all.empty());
    EXPECT_EQ(all[0].key, row.key);
    PushKey(row.scan, row.sym, false, row.mod);
    EXPECT_EQ(Drain().size(), 1u);
  }
}

TEST_F(Desktop, KeysTextAndMouseArriveInOrder) {
  ASSERT_TRUE(Open({64, 64}));
  PushKey(SDL_SCANCODE_RCTRL, SDLK_RCTRL, true, KMOD_RCTRL);
  PushKey(SDL_SCANCODE_S, SDLK_s, true, KMOD_RCTRL);
  PushKey(SDL_SCANCODE_S, SDLK_s, true, KMOD_RCTRL, true);
  SDL_Event event{};
  event.type = SDL_TEXTINPUT;
  SDL_strlcpy(event.text.text, "é\xF0\x9F\x98\x80", sizeof event.text.text);
  SDL_PushEvent(&event);
  event = {};
  event.type = SDL_MOUSEMOTION;
  event.motion.x = 12;
  event.motion.y = -3;
  SDL_PushEvent(&event);
  event = {};
  event.type = SDL_MOUSEBUTTONDOWN;
  event.button.button = SDL_BUTTON_RIGHT;
  SDL_PushEvent(&event);
  event = {};
  event.type = SDL_MOUSEWHEEL;
  event.wheel.y = -1;
  SDL_PushEvent(&event);
  event = {};
  event.type = SDL_WINDOWEVENT;
  event.window.event = SDL_WINDOWEVENT_FOCUS_LOST;
  SDL_PushEvent(&event);
  EXPECT_TRUE(platform.messages->KeyHeldNow('S') == false); // the lost focus let go of it
  const auto all = Drain();
  ASSERT_EQ(all.size(), 12u);
  EXPECT_EQ(all[0].key, 17);
  EXPECT_TRUE(all[0].extended);
  EXPECT_EQ(all[2].character, u'\x13'); // control and S
  EXPECT_TRUE(all[3].repeat);
  EXPECT_EQ(all[5].character, u'é');
  EXPECT_EQ(all[6].character, char16_t{0xD83D});
  EXPECT_EQ(all[8].kind, MessageKind::MouseMove);
  EXPECT_EQ(all[8].x, 12);
  EXPECT_EQ(all[8].y, -3);
  EXPECT_EQ(all[9].button, 2);
  EXPECT_LT(all[10].delta, 0);
  EXPECT_EQ(all[11].kind, MessageKind::Activate);
  EXPECT_FALSE(all[11].active);
}

// A finger moves the mouse to where it presses.
TEST_F(Desktop, AFingerIsAMouse) {
  ASSERT_TRUE(Open({64, 64}));
  SDL_Event event{};
  event.type = SDL_MOUSEMOTION;
  event.motion.which = SDL_TOUCH_MOUSEID;
  event.motion.x = 20;
  SDL_PushEvent(&event);
  event = {};
  event.type = SDL_MOUSEBUTTONDOWN;
  event.button.which = SDL_TOUCH_MOUSEID;
  event.button.button = SDL_BUTTON_LEFT;
  event.button.x = 20;
  SDL_PushEvent(&event);
  const auto all = Drain();
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[0].kind, MessageKind::MouseMove);
  EXPECT_EQ(all[0].x, 20);
  EXPECT_EQ(all[1].button, 1);
}

TEST_F(Desktop, TextUnderAltIsNoText) {
  ASSERT_TRUE(Open({64, 64}));
  SDL_Event text{};
  text.type = SDL_TEXTINPUT;
  SDL_strlcpy(text.text.text, "@", sizeof text.text.text);
  PushKey(SDL_SCANCODE_LALT, SDLK_LALT, true, KMOD_LALT);
  PushKey(SDL_SCANCODE_R, SDLK_r, true, KMOD_LALT);
  SDL_PushEvent(&text);
  PushKey(SDL_SCANCODE_LALT, SDLK_LALT, false, 0);
  auto all = Drain();
  ASSERT_EQ(all.size(), 3u);
  EXPECT_TRUE(all[1].system);
  // The right alt key types on many layouts.
  PushKey(SDL_SCANCODE_RALT, SDLK_RALT, true, KMOD_RALT);
  SDL_PushEvent(&text);
  all = Drain();
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[1].character, u'@');
}

TEST_F(Desktop, InjectedKeysComeBackWithTheirText) {
  ASSERT_TRUE(Open({64, 64}));
  platform.messages->InjectKey('X', true);
  EXPECT_TRUE(platform.messages->KeyHeldNow('X'));
  EXPECT_FALSE(platform.messages->KeyHeld('X'));
  platform.messages->InjectKey('X', false);
  platform.messages->InjectKey(0, true);
  platform.messages->InjectKey(300, true);
  const auto all = Drain();
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0].kind, MessageKind::KeyDown);
  EXPECT_EQ(all[1].character, u'x');
  EXPECT_EQ(all[2].kind, MessageKind::KeyUp);
}

TEST_F(Desktop, VirtualPadsAreReadBothWaysAndGoAway) {
  ASSERT_TRUE(Open({64, 64}));
  ASSERT_TRUE(platform.pads->Available());
  EXPECT_TRUE(platform.pads->Devices().empty());
  const int at = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, SDL_CONTROLLER_AXIS_MAX, 15, 0);
  ASSERT_GE(at, 0);
  const auto devices = platform.pads->Devices();
  ASSERT_EQ(devices.size(), 1u);
  EXPECT_TRUE(devices[0].standard);
  EXPECT_EQ(devices[0].guid.size(), 32u);
  SDL_Joystick* joystick = SDL_JoystickFromInstanceID(devices[0].device);
  SDL_JoystickSetVirtualAxis(joystick, SDL_CONTROLLER_AXIS_LEFTX, -32768);
  SDL_JoystickSetVirtualAxis(joystick, SDL_CONTROLLER_AXIS_LEFTY, -32768);
  SDL_JoystickSetVirtualAxis(joystick, SDL_CONTROLLER_AXIS_TRIGGERRIGHT, 32767);
  SDL_JoystickSetVirtualButton(joystick, SDL_CONTROLLER_BUTTON_A, 1);
  SDL_JoystickSetVirtualButton(joystick, SDL_CONTROLLER_BUTTON_DPAD_LEFT, 1);
  bool changed = false;
  for (const Message& message : Drain()) changed |= message.kind == MessageKind::PadsChanged;
  EXPECT_TRUE(changed);
  StandardPadState standard;
  ASSERT_TRUE(platform.pads->ReadStandard(devices[0].device, standard));
  EXPECT_EQ(standard.buttons, 0x1004);
  EXPECT_EQ(standard.leftX, -32768);
  EXPECT_EQ(standard.leftY, 32767); // up is positive
  EXPECT_EQ(standard.leftTrigger, 0);
  EXPECT_EQ(standard.rightTrigger, 255);
  RawPadState raw;
  ASSERT_TRUE(platform.pads->ReadRaw(devices[0].device, raw));
  EXPECT_EQ(raw.axes[SDL_CONTROLLER_AXIS_LEFTX], -1000);
  EXPECT_EQ(raw.axes[SDL_CONTROLLER_AXIS_TRIGGERRIGHT], 1000);
  EXPECT_EQ(raw.buttons.at(SDL_CONTROLLER_BUTTON_A), 1);
  SDL_JoystickDetachVirtual(at);
  Drain();
  EXPECT_FALSE(platform.pads->ReadStandard(devices[0].device, standard));
  EXPECT_EQ(standard.buttons, 0);
  EXPECT_TRUE(platform.pads->Devices().empty());
}

TEST_F(Desktop, SoundAsksForSamplesUntilItIsClosed) {
  static std::atomic<int> frames;
  frames = 0;
  AudioFormat format;
  ASSERT_TRUE(platform.audio->Open(
      format, [](void*, int16_t*, int count) { frames += count; }, nullptr));
  EXPECT_GT(format.rate, 0);
  for (int round = 0; round < 200 && frames == 0; ++round) SDL_Delay(10);
  EXPECT_GT(frames, 0);
  platform.audio->Close();
  const int after = frames;
  SDL_Delay(60);
  EXPECT_EQ(frames, after);
}

TEST(Library, FindsFunctionsAndSaysWhyNot) {
  CLibrary library;
  std::string why;
  EXPECT_FALSE(library.Open("no_such_library.so", &why));
  EXPECT_NE(why.find("no_such_library.so"), std::string::npos);
  ASSERT_TRUE(library.Open("libm.so.6", &why)) << why;
  const auto cosine = reinterpret_cast<double (*)(double)>(library.Find("cos"));
  ASSERT_NE(cosine, nullptr);
  EXPECT_EQ(cosine(0.0), 1.0);
  EXPECT_EQ(library.Find("no_such_function"), nullptr);
}
