#include "app/window/shortcut_field.h"

#include <QKeyEvent>
#include <QKeySequence>

namespace vornic {

namespace {

constexpr Qt::KeyboardModifiers heldKeys
    = Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

bool isModifier(int key)
{
    return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || key == Qt::Key_AltGr || key == 0
        || key == Qt::Key_unknown || (key >= Qt::Key_Super_L && key <= Qt::Key_Hyper_R);
}

/// Whether nobody types with these keys.
bool mayBeTaken(int key, Qt::KeyboardModifiers held)
{
    const bool isFunctionKey = key >= Qt::Key_F1 && key <= Qt::Key_F35;
    const bool isSpare = key == Qt::Key_Print || key == Qt::Key_Pause || key == Qt::Key_SysReq;
    return isFunctionKey || isSpare || (held & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

/// The window's, not the field's.
bool movesFocus(const QKeyEvent &event)
{
    const bool isTab = event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab;
    return (isTab || event.key() == Qt::Key_Escape) && !(event.modifiers() & heldKeys & ~Qt::ShiftModifier);
}

} // namespace

ShortcutField::ShortcutField(QWidget *parent)
    : VNTextFieldCell(parent)
{
    setReadOnly(true);
    setContextMenuPolicy(Qt::NoContextMenu);
    setPlaceholderText(tr("None"));
}

void ShortcutField::setShortcut(const QString &portable)
{
    m_shortcut = portable;
    setText(
        QKeySequence::fromString(portable, QKeySequence::PortableText).toString(QKeySequence::NativeText));
}

bool ShortcutField::event(QEvent *event)
{
    // What is a mnemonic or a menu's key elsewhere is a combination like any other here.
    if (event->type() == QEvent::ShortcutOverride && !movesFocus(*static_cast<QKeyEvent *>(event))) {
        event->accept();
        return true;
    }
    return VNTextFieldCell::event(event);
}

void ShortcutField::keyPressEvent(QKeyEvent *event)
{
    if (movesFocus(*event)) {
        event->ignore();
        return;
    }
    const Qt::KeyboardModifiers held = event->modifiers() & heldKeys;
    if (isModifier(event->key()))
        return;
    QString pressed;
    const bool empties = !held && (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete);
    if (!empties) {
        if (!mayBeTaken(event->key(), held)) {
            emit refused();
            return;
        }
        pressed = QKeySequence(QKeyCombination(held, static_cast<Qt::Key>(event->key())))
                      .toString(QKeySequence::PortableText);
    }
    setShortcut(pressed);
    emit chosen(pressed);
}

} // namespace vornic
