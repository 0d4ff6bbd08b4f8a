#include "Platform/KeyCodes.h"

namespace vesk {

namespace {

constexpr int kShift = 16;
constexpr int kControl = 17;
constexpr int kAlt = 18;
constexpr int kLeftShift =
    160; // each left code is followed by its right one, and the three pairs by each other

struct PrintableKey {
  int key;
  char16_t plain;
  char16_t shifted;
};

constexpr PrintableKey kPrintable[] = {
    {32, u' ', u' '},  {48, u'0', u')'},   {49, u'1', u'!'},  {50, u'2', u'@'},  {51, u'3', u'#'},
    {52, u'4', u'$'},  {53, u'5', u'%'},   {54, u'6', u'^'},  {55, u'7', u'&'},  {56, u'8', u'*'},
    {57, u'9', u'('},  {186, u';', u':'},  {187, u'=', u'+'}, {188, u',', u'<'}, {189, u'-', u'_'},
    {190, u'.', u'>'}, {191, u'/', u'?'},  {192, u'`', u'~'}, {219, u'[', u'{'}, {220, u'\\', u'|'},
    {221, u']', u'}'}, {222, u'\'', u'"'}, {96, u'0', u'0'},  {97, u'1', u'1'},  {98, u'2', u'2'},
    {99, u'3', u'3'},  {100, u'4', u'4'},  {101, u'5', u'5'}, {102, u'6', u'6'}, {103, u'7', u'7'},
    {104, u'8', u'8'}, {105, u'9', u'9'},  {106, u'*', u'*'}, {107, u'+', u'+'}, {109, u'-', u'-'},
    {110, u'.', u'.'}, {111, u'/', u'/'},
};

} // namespace

char16_t KeyCode_Character(int key, bool shift, bool control) {
  switch (key) {
  case 8: return control ? u'\x7F' : u'\b';
  case 9: return control ? u'\0' : u'\t';
  case 13: return control ? u'\n' : u'\r';
  case 27: return u'\x1B';
  default: break;
  }
  if (key >= 'A' && key <= 'Z') {
    if (control) return static_cast<char16_t>(key - 'A' + 1);
    return static_cast<char16_t>(shift ? key : key - 'A' + 'a');
  }
  if (control) return u'\0';
  for (const PrintableKey& row : kPrintable)
    if (row.key == key) return shift ? row.shifted : row.plain;
  return u'\0';
}

int KeyCode_ForCharacter(char16_t character, bool& shift) {
  shift = false;
  if (character >= u'a' && character <= u'z') return character - u'a' + 'A';
  if (character >= u'A' && character <= u'Z') {
    shift = true;
    return character;
  }
  if (character == u'\b' || character == u'\t' || character == u'\r' || character == u'\x1B')
    return character;
  for (const PrintableKey& row : kPrintable) {
    if (row.plain == character) return row.key;
    if (row.shifted == character) {
      shift = true;
      return row.key;
    }
  }
  return 0;
}

Message KeyCode_Message(int key, bool down) {
  Message message;
  message.kind = down ? MessageKind::KeyDown : MessageKind::KeyUp;
  message.key = static_cast<uint8_t>(key);
  if (key >= kLeftShift && key < kLeftShift + 6) {
    message.key = static_cast<uint8_t>(kShift + (key - kLeftShift) / 2);
    message.extended = (key & 1) != 0;
  }
  return message;
}

void CKeyStates::Apply(const Message& message) {
  if (message.kind == MessageKind::Activate && !message.active) {
    m_held.fill(false);
    return;
  }
  const bool down = message.kind == MessageKind::KeyDown;
  if (!down && message.kind != MessageKind::KeyUp) return;
  const bool sided = message.key >= kShift && message.key <= kAlt;
  static_assert(kControl == kShift + 1);
  if (sided) {
    const size_t left = static_cast<size_t>(kLeftShift + 2 * (message.key - kShift));
    m_held[left + (message.extended ? 1 : 0)] = down;
    m_held[message.key] = m_held[left] || m_held[left + 1];
  } else {
    if (down && !m_held[message.key]) m_toggled[message.key] = !m_toggled[message.key];
    m_held[message.key] = down;
  }
}

} // namespace vesk
