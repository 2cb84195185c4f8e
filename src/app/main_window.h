#pragma once

#include <QWidget>

#include <vector>

class QGridLayout;
class QProgressBar;
class QPushButton;

namespace vornic {

class VornicAppDelegate;

/// The main window: what is recorded, how, and the record button.
///
/// Made by main; lives on the main thread. Its controls are bound to the delegate's options.
class MainWindow : public QWidget
{
    Q_OBJECT
public:
    explicit MainWindow(VornicAppDelegate &delegate);

    /// The busy indicator.
    void setSaving(bool saving);
    /// Enables the controls that may be used now.
    void reloadData();

signals:
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    struct NumberField {
        const char *keyPath;
        QString label;
        double least;
        double most;
        int decimals;
    };
    void
    addNumbers(QGridLayout &layout, const std::vector<NumberField> &fields, std::vector<QWidget *> &controls);
    void addLogo(QGridLayout &layout);
    void chooseLogoImage();
    void addRegion(QGridLayout &layout);
    void addQuality(QGridLayout &layout);
    void addSound(QGridLayout &layout);
    void addAfterwards(QGridLayout &layout);
    void bind(QWidget *control, const char *property, const char *keyPath);

    VornicAppDelegate &m_delegate;
    QPushButton *m_recordButton;
    QProgressBar *savePI;
    std::vector<QWidget *> m_regionControls;
    std::vector<QWidget *> m_logoControls;
    std::vector<QWidget *> m_textControls;
    std::vector<QWidget *> m_otherControls;
};

} // namespace vornic
