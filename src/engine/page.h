// A filter's page of controls as one table of data. Everything that deals with a filter's settings walks it: loading
// and storing, defaults, history, files, listings, help and, where there are windows, the page itself.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "engine/settings.h"

namespace lmf {

enum class ControlKind : uint8_t {
    None,        ///< a setting without a control
    Slider,      ///< scroll bar with spin and edit
    NumberEdit,  ///< edit with spin, no scroll bar
    Combo,       ///< the value is an index into `list`
    CheckBox,    ///< the value is 1 or 0
    RadioButton, ///< one of several controls of a setting; the value is `pressedValue` while this one is down
    ColorButton, ///< the value is 0x00BBGGRR
    FontButton,  ///< text: the name of a font
    TextField    ///< text
};

/// How a number is shown and typed.
enum class Shown : uint8_t {
    Plain,
    Hundredths, ///< as value / 100 with two decimals
    Offset      ///< as value - offset
};

struct ControlRange {
    int32_t min = 0;
    int32_t max = 0;

    constexpr bool operator==(const ControlRange &) const = default;
};

using NumberField = int32_t FilterParameters::*;
using TextFieldMember = SettingText FilterParameters::*;

/// One control of a page. Ranges are in stored units, whatever is shown.
struct PageControl {
    ControlKind kind = ControlKind::None;
    Shown shown = Shown::Plain;
    int32_t id = 0; ///< base id B; edit B + 12000 (B itself without a bar), spin B + 10000, label B + 20000. 0: none
    const char *label = "";
    NumberField number = nullptr;   ///< the setting, or null for a text
    TextFieldMember text = nullptr; ///< the setting, or null for a number
    ControlRange bar{};             ///< reach of the scroll bar
    ControlRange edit{};            ///< what may be typed
    ControlRange stored{};          ///< what loading limits a number to
    int32_t offset = 0;             ///< of Shown::Offset
    int32_t pressedValue = 0;       ///< of a radio button
    const char *list = nullptr;     ///< entries of a combo, separated by ';'
    std::optional<int32_t> restore; ///< what "Restore defaults" sets where it is not the stored default
    int32_t trackStyle = 0;         ///< track brush of the scroll bar, 0 to 15

    /// The same control with another range for typed values.
    constexpr PageControl Edit(int32_t min, int32_t max) const {
        PageControl changed = *this;
        changed.edit = changed.stored = {min, max};
        return changed;
    }
    /// The same control with a range of its own for loaded values.
    constexpr PageControl Stored(int32_t min, int32_t max) const {
        PageControl changed = *this;
        changed.stored = {min, max};
        return changed;
    }
    /// The same control with a restore value apart from the stored default.
    constexpr PageControl Restores(int32_t value) const {
        PageControl changed = *this;
        changed.restore = value;
        return changed;
    }
    /// The same control showing value - offset.
    constexpr PageControl ShownLess(int32_t by) const {
        PageControl changed = *this;
        changed.shown = Shown::Offset;
        changed.offset = by;
        return changed;
    }
    /// The same control with another track brush.
    constexpr PageControl Track(int32_t style) const {
        PageControl changed = *this;
        changed.trackStyle = style;
        return changed;
    }
};

/// A control of any kind for a number, with one range for bar, typing and loading.
constexpr PageControl NumberControl(ControlKind kind, int32_t id, const char *label, NumberField field,
                                    ControlRange range) {
    PageControl control;
    control.kind = kind;
    control.id = id;
    control.label = label;
    control.number = field;
    control.bar = control.edit = control.stored = range;
    return control;
}

/// Scroll bar, spin and edit that show the integer itself.
constexpr PageControl Slider(int32_t id, const char *label, NumberField field, ControlRange range) {
    return NumberControl(ControlKind::Slider, id, label, field, range);
}

/// Scroll bar, spin and edit that show value / 100 as "%.2f".
constexpr PageControl HundredthsSlider(int32_t id, const char *label, NumberField field, ControlRange range) {
    PageControl control = Slider(id, label, field, range);
    control.shown = Shown::Hundredths;
    return control;
}

/// Scroll bar, spin and edit that show value - offset; `range` is that of the stored value.
constexpr PageControl OffsetSlider(int32_t id, const char *label, NumberField field, ControlRange range,
                                   int32_t offset) {
    PageControl control = Slider(id, label, field, range);
    control.shown = Shown::Offset;
    control.offset = offset;
    return control;
}

/// Edit with a spin and no scroll bar.
constexpr PageControl NumberEdit(int32_t id, const char *label, NumberField field, ControlRange range) {
    return NumberControl(ControlKind::NumberEdit, id, label, field, range);
}

/// Number of entries in a list separated by ';'. Empty entries do not count.
constexpr int32_t ListLength(const char *list) {
    int32_t entries = 0;
    for (bool inside = false; *list != '\0'; list++) {
        if (*list != ';' && !inside) entries++;
        inside = *list != ';';
    }
    return entries;
}

/// Combo box over the names in `list`, separated by ';'.
constexpr PageControl Combo(int32_t id, const char *label, NumberField field, const char *list) {
    PageControl control = NumberControl(ControlKind::Combo, id, label, field, {0, ListLength(list) - 1});
    control.list = list;
    return control;
}

/// Combo box whose names are read from a file, so that there is no last index to hold a value to.
constexpr PageControl FileCombo(int32_t id, const char *label, NumberField field) {
    PageControl control = NumberControl(ControlKind::Combo, id, label, field, {0, INT32_MAX});
    control.list = "";
    return control;
}

/// Check box. Loading takes any non-zero value for set and keeps it as it is.
constexpr PageControl CheckBox(int32_t id, const char *label, NumberField field) {
    return NumberControl(ControlKind::CheckBox, id, label, field, {0, 1}).Stored(INT32_MIN, INT32_MAX);
}

/// One of several buttons of a setting that takes the values of `range`.
constexpr PageControl RadioButton(int32_t id, const char *label, NumberField field, int32_t value, ControlRange range) {
    PageControl control = NumberControl(ControlKind::RadioButton, id, label, field, range);
    control.pressedValue = value;
    return control;
}

/// Button that shows a colour and opens the colour dialog.
constexpr PageControl ColorButton(int32_t id, const char *label, NumberField field) {
    return NumberControl(ControlKind::ColorButton, id, label, field, {0, 0xFFFFFF});
}

/// A control of any kind for a text.
constexpr PageControl TextControl(ControlKind kind, int32_t id, const char *label, TextFieldMember field) {
    PageControl control;
    control.kind = kind;
    control.id = id;
    control.label = label;
    control.text = field;
    return control;
}

/// Button that shows the name of a font and opens the font dialog.
constexpr PageControl FontButton(int32_t id, const char *label, TextFieldMember field) {
    return TextControl(ControlKind::FontButton, id, label, field);
}

/// Edit for a text.
constexpr PageControl TextField(int32_t id, const char *label, TextFieldMember field) {
    return TextControl(ControlKind::TextField, id, label, field);
}

/// A setting that has a key and no control.
constexpr PageControl HiddenNumber(NumberField field, ControlRange range) {
    return NumberControl(ControlKind::None, 0, "", field, range);
}

/// A check box setting that has a key and no control.
constexpr PageControl HiddenBool(NumberField field) {
    return HiddenNumber(field, {0, 1}).Stored(INT32_MIN, INT32_MAX);
}

/// What "Restore defaults" puts into the control's number.
int32_t RestoreValueOf(const PageControl &control);

} // namespace lmf
