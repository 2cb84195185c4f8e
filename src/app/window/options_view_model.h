#pragma once

#include <QObject>
#include <QStringList>

namespace vornic {

class VNOption;

/// What the main window shows of the options in other units than they are kept in.
///
/// Made and owned by the main window; borrows the options for life; main thread only. Its properties are bound to
/// controls as those of the options are.
class OptionsViewModel : public QObject
{
    Q_OBJECT
    /// From the top of the main display to the rectangle, in pixels.
    Q_PROPERTY(double top READ top WRITE setTop NOTIFY rectangleChanged)
    /// The place of the rectangle's size among sizePresetTitles().
    Q_PROPERTY(qint64 sizePreset READ sizePreset WRITE setSizePreset NOTIFY rectangleChanged)
    /// LogoTransparency in percent, in whole numbers.
    Q_PROPERTY(double logoOpacity READ logoOpacity WRITE setLogoOpacity NOTIFY logoOpacityChanged)
public:
    explicit OptionsViewModel(VNOption &options);

    [[nodiscard]] double top() const;
    void setTop(double top);
    [[nodiscard]] qint64 sizePreset() const;
    /// Keeps the rectangle's middle where it is, but the rectangle on the display; no larger than that. The first
    /// one, which stands for every other size, changes nothing.
    void setSizePreset(qint64 index);
    [[nodiscard]] static QStringList sizePresetTitles();
    [[nodiscard]] double logoOpacity() const;
    void setLogoOpacity(double percent);

signals:
    void rectangleChanged();
    void logoOpacityChanged();
    /// setSizePreset() has given the rectangle another size.
    void sizePresetChosen();

private:
    VNOption &m_options;
};

} // namespace vornic
