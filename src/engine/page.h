// A filter's page of controls as one table of data. Everything that deals with a filter's settings walks it: loading
// and storing, defaults, history, files, listings, help and, where there are windows, the page itself.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "engine/settings.h"

namespace lmf {

/// Keeps page tables narrow: `&P::FilterGaussianRadius`.
using P = FilterParameters;

enum class ControlKind : uint8_t {
    None,        ///< a setting without a control
    Slider,      ///< scroll bar with spin and edit
    NumberEdit,  ///< edit with spin, no scroll bar
    Combo,       ///< the value is an index into `list`
    CheckBox,    ///< the value is 1 or 0
    RadioButton, ///< one of several controls of a setting; the value is `pressedValue` while this one is down
    ColorButton, ///< the value is 0x00BBGGRR
    FontButton,  ///< text: the name of a font
    TextField,   ///< text
    Button,      ///< no setting: starts something
    Static,      ///< no setting: a line of text
    Picture      ///< no setting: an area that the filter draws
};

/// How a number is shown and typed in windows.
enum class Shown : uint8_t {
    Plain,
    Tenths,     ///< as value / 10 with one decimal
    Hundredths, ///< as value / 100 with two decimals
    Offset      ///< as value - offset
};

/// What a number counts.
enum class Unit : uint8_t { None, Pixels, Percent, Degrees, Levels, Seed, Points, Millimetres, Kelvin, Times };

/// Where a combo's names come from.
enum class ListSource : uint8_t {
    Names,       ///< the table's own list
    Fonts,       ///< the families that the system has
    Faces,       ///< the faces that were found in the picture
    Destinations ///< the file of destinations
};

/// What the reach of a number depends on beside its table.
enum class RangeSource : uint8_t {
    Table,
    PictureWidth, ///< no further than the picture's width in pixels
    PictureHeight,
    SecondPicture ///< the last value only where the picture has a second one
};

struct ControlRange {
    int32_t min = 0;
    int32_t max = 0;

    constexpr bool Holds(int32_t value) const { return value >= min && value <= max; }
    constexpr bool operator==(const ControlRange &) const = default;
};

/// The three reaches of a number, in stored units. What is not said of typing is that of the bar, and what is not said
/// of loading is that of typing.
struct Limits {
    ControlRange bar{};
    std::optional<ControlRange> typed, stored;

    /// Reach of the scroll bar.
    constexpr ControlRange Bar() const { return bar; }
    /// What may be typed.
    constexpr ControlRange Typed() const { return typed.value_or(bar); }
    /// What loaded values, and those of a run, are limited to.
    constexpr ControlRange Stored() const { return stored.value_or(Typed()); }
};

/// One control of a page.
struct PageControl {
    ControlKind kind = ControlKind::None;
    Shown shown = Shown::Plain;
    Unit unit = Unit::None;
    ListSource listSource = ListSource::Names;
    RangeSource rangeSource = RangeSource::Table;
    int32_t id = 0;             ///< of the bar, or of the control itself; see EditId, SpinId and LabelId. 0: none
    const char *label = "";     ///< what stands beside the control
    const char *name = nullptr; ///< what tells it from another one with the same label; null: the label does
    const char *help = "";      ///< a sentence that says what the control does to the picture
    NumberField number = nullptr;
    TextMember text = nullptr;
    Limits limits{};
    int32_t offset = 0;             ///< of Shown::Offset
    int32_t perUnit = 1;            ///< stored steps that make one unit
    int32_t pressedValue = 0;       ///< of a radio button
    const char *list = nullptr;     ///< entries of a combo, separated by ';'
    std::optional<int32_t> restore; ///< what "Restore defaults" sets where it is not the stored default
    int32_t trackStyle = 0;         ///< track brush of the scroll bar, 0 to 15

    constexpr bool IsSetting() const { return number != nullptr || text != nullptr; }

    /// The same control with another range for typed values.
    constexpr PageControl Edit(int32_t min, int32_t max) const {
        PageControl changed = *this;
        changed.limits.typed = {min, max};
        return changed;
    }
    /// The same control with a range of its own for loaded values.
    constexpr PageControl Stored(int32_t min, int32_t max) const {
        PageControl changed = *this;
        changed.limits.stored = {min, max};
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
    /// The same control showing value / 10.
    constexpr PageControl InTenths() const {
        PageControl changed = *this;
        changed.shown = Shown::Tenths;
        return changed;
    }
    /// The same control with another track brush.
    constexpr PageControl Track(int32_t style) const {
        PageControl changed = *this;
        changed.trackStyle = style;
        return changed;
    }
    /// The same control counting `unit`, of which `steps` stored steps make one.
    constexpr PageControl In(Unit counted, int32_t steps = 1) const {
        PageControl changed = *this;
        changed.unit = counted;
        changed.perUnit = steps;
        return changed;
    }
    /// The same control with its sentence of help.
    constexpr PageControl Help(const char *sentence) const {
        PageControl changed = *this;
        changed.help = sentence;
        return changed;
    }
    /// The same control with a name that no other control of the page has.
    constexpr PageControl Named(const char *own) const {
        PageControl changed = *this;
        changed.name = own;
        return changed;
    }
    /// The same combo with names from elsewhere.
    constexpr PageControl ListFrom(ListSource source) const {
        PageControl changed = *this;
        changed.listSource = source;
        return changed;
    }
    /// The same control with a reach that the picture cuts short.
    constexpr PageControl Within(RangeSource source) const {
        PageControl changed = *this;
        changed.rangeSource = source;
        return changed;
    }
};

/// Ids of what belongs to a control: its edit (the control itself where there is no bar), spin and label.
constexpr int32_t EditId(const PageControl &control) {
    return control.kind == ControlKind::Slider ? control.id + 12000 : control.id;
}
constexpr int32_t SpinId(const PageControl &control) {
    return control.id + 10000;
}
constexpr int32_t LabelId(const PageControl &control) {
    return control.id + 20000;
}

/// A control of any kind for a number, with one range for bar, typing and loading.
constexpr PageControl NumberControl(ControlKind kind, int32_t id, const char *label, NumberField field,
                                    ControlRange range) {
    PageControl control;
    control.kind = kind;
    control.id = id;
    control.label = label;
    control.number = field;
    control.limits.bar = range;
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
    control.perUnit = 100;
    return control;
}

/// Scroll bar, spin and edit that show value - offset; `range` is that of the stored value.
constexpr PageControl OffsetSlider(int32_t id, const char *label, NumberField field, ControlRange range,
                                   int32_t offset) {
    return Slider(id, label, field, range).ShownLess(offset);
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

/// Combo box whose names come from elsewhere, so that there is no last index to hold a value to.
constexpr PageControl ComboFrom(ListSource source, int32_t id, const char *label, NumberField field) {
    PageControl control = NumberControl(ControlKind::Combo, id, label, field, {0, INT32_MAX}).ListFrom(source);
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

/// A control of any kind for a text, or for no setting.
constexpr PageControl TextControl(ControlKind kind, int32_t id, const char *label, TextMember field = nullptr) {
    PageControl control;
    control.kind = kind;
    control.id = id;
    control.label = label;
    control.text = field;
    return control;
}

/// Button that shows the name of a font and opens the font dialog.
constexpr PageControl FontButton(int32_t id, const char *label, TextMember field) {
    return TextControl(ControlKind::FontButton, id, label, field).ListFrom(ListSource::Fonts);
}

/// Edit for a text.
constexpr PageControl TextField(int32_t id, const char *label, TextMember field) {
    return TextControl(ControlKind::TextField, id, label, field);
}

/// Button without a setting.
constexpr PageControl PushButton(int32_t id, const char *label) {
    return TextControl(ControlKind::Button, id, label);
}

/// Line of text without a setting.
constexpr PageControl StaticText(int32_t id, const char *label) {
    return TextControl(ControlKind::Static, id, label);
}

/// Area that the filter draws.
constexpr PageControl PictureArea(int32_t id) {
    return TextControl(ControlKind::Picture, id, "");
}

/// A setting that has a key and no control.
constexpr PageControl HiddenNumber(NumberField field, ControlRange range) {
    return NumberControl(ControlKind::None, 0, "", field, range);
}

/// A check box setting that has a key and no control.
constexpr PageControl HiddenBool(NumberField field) {
    return HiddenNumber(field, {0, 1}).Stored(INT32_MIN, INT32_MAX);
}

/// When a control can be used: while the setting `when` has one of some values. Controls without a rule always can;
/// one with several rules needs all of them.
struct EnableRule {
    int32_t control;  ///< id
    NumberField when; ///< another setting of the page
    uint32_t values;  ///< bit v: usable at value v; bit 31 stands for 31 and above, bit 0 for 0 and below

    /// May the control be used at this value?
    constexpr bool Allows(int32_t value) const {
        return (values >> (value < 0 ? 0 : value > 31 ? 31 : value) & 1) != 0;
    }
};

/// Usable while a check box is set.
constexpr EnableRule EnabledWhileOn(int32_t control, NumberField box) {
    return {control, box, ~1u};
}
/// Usable while a check box is clear.
constexpr EnableRule EnabledWhileOff(int32_t control, NumberField box) {
    return {control, box, 1u};
}
/// Usable while the setting has the value.
constexpr EnableRule EnabledAt(int32_t control, NumberField when, int32_t value) {
    return {control, when, 1u << value};
}

/// The first fault of a page table, or an empty text: ids used twice, labels and help missing, factory defaults and
/// restore values out of reach, rules that name no control.
consteval std::string_view FaultOf(std::span<const PageControl> page, std::span<const EnableRule> rules) {
    for (size_t i = 0; i < page.size(); i++) {
        const PageControl &control = page[i];
        const bool isOnPage = control.kind != ControlKind::None;
        if (isOnPage != (control.id > 0)) return "a control without an id, or a hidden setting with one";
        if (control.number != nullptr && control.text != nullptr) return "a control with two settings";
        for (const PageControl &other : page.subspan(i + 1)) {
            if (isOnPage && other.id == control.id) return "an id twice";
            if (control.IsSetting() && control.kind != ControlKind::RadioButton && control.number == other.number &&
                control.text == other.text)
                return "a setting twice";
        }
        if (control.IsSetting() && *control.help == '\0') return "a control without help";
        if (control.number == nullptr) continue;
        const ControlRange stored = control.limits.Stored();
        if (stored.min > stored.max) return "an empty range";
        if (!stored.Holds(kFactorySettings.*control.number)) return "a factory default out of range";
        if (!stored.Holds(control.restore.value_or(stored.min))) return "a restore value out of range";
        if (control.perUnit < 1) return "a unit without steps";
    }
    for (const EnableRule &rule : rules) {
        bool isThere = false;
        for (const PageControl &control : page) isThere |= control.id == rule.control;
        if (!isThere || rule.when == nullptr) return "a rule for no control";
    }
    return "";
}

} // namespace lmf
