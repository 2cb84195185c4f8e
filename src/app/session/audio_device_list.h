#pragma once

#include <QObject>
#include <QStringList>

namespace vornic {

/// The list of audio input devices that the user chooses from.
///
/// Owned by the application delegate, shown by the main window; lives on the main thread.
class AudioDeviceList : public QObject
{
    Q_OBJECT
public:
    void addMenuItem(const QString &title);
    [[nodiscard]] qsizetype numberOfMenuItems() const { return m_titles.size(); }
    [[nodiscard]] const QStringList &titles() const { return m_titles; }
    /// -1: nothing is selected.
    [[nodiscard]] qsizetype indexOfSelected() const { return m_indexOfSelected; }
    void setIndexOfSelected(qsizetype index);
    /// The selected title; null when nothing is selected.
    [[nodiscard]] QString stringValue() const { return m_titles.value(m_indexOfSelected); }
    [[nodiscard]] bool isEnabled() const { return m_enabled; }
    void setEnabled(bool enabled);

signals:
    void changed();

private:
    QStringList m_titles;
    qsizetype m_indexOfSelected = -1;
    bool m_enabled = true;
};

} // namespace vornic
