#pragma once

class FilterControl;

// What a screen reader hears of a FilterControl: a list of tabs, one a segment, of which one is selected and
// each can be pressed. Main thread.
namespace FilterAccessibility {

// From now on every FilterControl is one.
void install();

// Tells of a new selected segment.
void announceSelection(FilterControl &control);

} // namespace FilterAccessibility
