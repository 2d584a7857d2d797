// The keyboard of the history panel: what each key does in the panel, its search field and its list.

#include "Norvane/ClipViews.h"
#include "Norvane/PopupController.h"
#include "Norvane/PopupPanel.h"
#include "Norvane/SearchField.h"
#include "Platform/KeyCodes.h"

#include <QKeyEvent>
#include <array>

namespace {

constexpr int pageRows = 8;

struct DigitKey {
    quint32 keyCode;
    int digit;
};
// The number row by position, so that it works on every layout.
constexpr std::array digitKeyCodes = {
    DigitKey{18, 1}, DigitKey{19, 2}, DigitKey{20, 3}, DigitKey{21, 4}, DigitKey{23, 5},
    DigitKey{22, 6}, DigitKey{26, 7}, DigitKey{28, 8}, DigitKey{25, 9},
};

// The position of the key; of a key event made by a program, which has none, the position its symbol has on
// an ANSI keyboard.
quint32 keyCodeOf(const QKeyEvent *event)
{
    constexpr quint32 x11Offset = 8;
    if (event->nativeScanCode() > x11Offset)
        return keyCodeFromEvdev(event->nativeScanCode() - x11Offset);
    switch (event->key()) {
    case Qt::Key_Backspace:
        return KeyCode::deleteKey;
    case Qt::Key_Delete:
        return KeyCode::forwardDelete;
    default:
        break;
    }
    const int digit = event->key() - Qt::Key_0;
    for (const auto &key : digitKeyCodes) {
        if (key.digit == digit && !event->modifiers().testFlag(Qt::KeypadModifier))
            return key.keyCode;
    }
    return KeyCode::firstUnnumbered;
}

PasteMode modeOf(const QKeyEvent *event)
{
    if (event->modifiers().testFlag(Qt::AltModifier))
        return PasteMode::copy;
    return event->modifiers().testFlag(Qt::ShiftModifier) ? PasteMode::plain : PasteMode::paste;
}

// Ctrl alone, whatever Shift and the key pad say.
bool isCommand(Qt::KeyboardModifiers modifiers)
{
    return (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == Qt::ControlModifier;
}

// Ctrl+Backspace and Ctrl+Delete delete a word where there is one to delete.
bool deletesWord(const QLineEdit &field, quint32 keyCode)
{
    // Asked of the window: an override-redirect window may have the keyboard before the toolkit calls it
    // active.
    if (field.window()->focusWidget() != &field)
        return false;
    if (field.hasSelectedText())
        return true;
    return keyCode == KeyCode::deleteKey ? field.cursorPosition() > 0
                                         : field.cursorPosition() < field.text().size();
}

bool isTyped(const QString &characters)
{
    return !characters.isEmpty() && std::none_of(characters.begin(), characters.end(), [](QChar c) {
        return c.category() == QChar::Other_Control || (c >= u'\uF700' && c <= u'\uF8FF');
    });
}

} // namespace

bool PopupController::handlePanelKey(QKeyEvent *event)
{
    if (!isCommand(event->modifiers()))
        return false;
    const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
    const quint32 keyCode = keyCodeOf(event);
    for (const auto &key : digitKeyCodes) {
        if (key.keyCode == keyCode)
            return handleDigit(key.digit, shift);
    }
    if (shift) {
        if (event->key() != Qt::Key_E)
            return false;
        const ClipPointer clip = selectedClip();
        if (!onOpenInEditor)
            beep();
        else if (clip)
            leaveFor([this, clip] { onOpenInEditor(clip); });
        return true;
    }
    if (keyCode == KeyCode::deleteKey || keyCode == KeyCode::forwardDelete) {
        if (deletesWord(*panel->searchField, keyCode))
            return false;
        deleteSelected();
        return true;
    }
    return handleCommandLetter(event->key());
}

bool PopupController::handleDigit(int digit, bool shift)
{
    pick(model.clipAt(digit - 1), shift ? PasteMode::plain : PasteMode::paste);
    return true;
}

bool PopupController::handleCommandLetter(int key)
{
    switch (key) {
    case Qt::Key_P:
        togglePin();
        return true;
    case Qt::Key_E:
        editSelected();
        return true;
    case Qt::Key_N:
        leaveFor(onEdit ? std::function<void()>([this] { onEdit(nullptr); }) : nullptr);
        return true;
    case Qt::Key_F:
        panel->searchField->setFocus();
        return true;
    case Qt::Key_W:
        hide();
        return true;
    case Qt::Key_Comma:
        leaveFor(onShowSettings);
        return true;
    default:
        return false;
    }
}

// What the search field and the list do alike.
bool PopupController::handleSharedKey(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        pick(selectedClip(), modeOf(event));
        return true;
    case Qt::Key_Tab:
        stepFilter(1);
        return true;
    case Qt::Key_Backtab:
        stepFilter(-1);
        return true;
    default:
        return false;
    }
}

bool PopupController::handleFieldCommand(QKeyEvent *event)
{
    if (handleSharedKey(event))
        return true;
    const int row = panel->tableView->selectedRow();
    const bool plainKey = !(event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier));
    switch (event->key()) {
    case Qt::Key_Escape:
        if (panel->searchField->text().isEmpty())
            hide();
        else
            panel->searchField->clear(); // its change reloads
        return true;
    default:
        break;
    }
    if (!plainKey)
        return false;
    switch (event->key()) {
    case Qt::Key_Down:
        select(row + 1);
        return true;
    case Qt::Key_Up:
        select(row - 1);
        return true;
    case Qt::Key_PageDown:
        select(row + pageRows);
        return true;
    case Qt::Key_PageUp:
        select(row - pageRows);
        return true;
    default:
        return false;
    }
}

bool PopupController::handleListKey(QKeyEvent *event)
{
    if (handleSharedKey(event))
        return true;
    switch (event->key()) {
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        deleteSelected();
        return true;
    case Qt::Key_Escape:
        hide();
        return true;
    default:
        break;
    }
    // Super and Ctrl keys are commands, not text; AltGr is neither.
    if (event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier))
        return false;
    if (!isTyped(event->text()))
        return false;
    searchFor(event->text());
    return true;
}

void PopupController::searchFor(const QString &characters)
{
    panel->searchField->setFocus();
    panel->searchField->deselect();
    panel->searchField->insert(characters);
}
