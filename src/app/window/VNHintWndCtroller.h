#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>

class QDialog;

namespace vornic {

/// How a recording is stopped on this desktop: with the icon in the tray where there is one, else with the bar, and
/// with \a key, as its user reads it, unless that is empty.
[[nodiscard]] QString howToStop(bool hasTray, const QString &key);

/// The sheet that tells, before a recording starts, how it is stopped.
///
/// One for the life of the program, made at the first call of shareHintWndCtroller(); main thread only.
class VNHintWndCtroller : public QObject
{
    Q_OBJECT
    /// Whether the sheet is shown before the next recording too; stored in the user defaults.
    Q_PROPERTY(bool showAgain READ showAgain WRITE setShowAgain NOTIFY showAgainChanged)
public:
    [[nodiscard]] static VNHintWndCtroller &shareHintWndCtroller();

    [[nodiscard]] bool showAgain() const;
    void setShowAgain(bool showAgain);
    /// The key that stops from any program, as its user reads it; empty, as at first: there is none.
    void setKey(const QString &key) { m_key = key; }

    /// The window that the sheet stands on, while it is shown.
    [[nodiscard]] QWidget *parentWindow() const { return m_parent; }
    /// \a handler gets -1002 to go on, -1000 to stop; it may be empty. Without a \a parent the sheet stands
    /// alone.
    void beginSheetModalForWindow(QWidget *parent, std::function<void(int response)> handler);

public slots:
    void startRecordAction();
    void cancelAction();

signals:
    void showAgainChanged();

private:
    VNHintWndCtroller() = default;

    QString m_key;
    QPointer<QWidget> m_parent;
    QPointer<QDialog> m_window; ///< null while none is shown
};

} // namespace vornic
