#pragma once

#include "observing/observable_object.h"
#include "options/VNLogoContext.h"
#include "options/record_quality.h"

#include <QPointF>
#include <QRectF>

#include <memory>

namespace vornic {

class KeyedArchiver;
class KeyedUnarchiver;

/// The user's recording choices, and the geometry of the main display.
///
/// One, made and owned by the application delegate; main thread only. Rectangles and points are in screen
/// coordinates: device pixels, origin at the lower left of the main display, y up.
class VNOption : public ObservableObject
{
    Q_OBJECT
    Q_PROPERTY(int recordRegion READ recordRegion WRITE setRecordRegion NOTIFY recordRegionChanged)
    Q_PROPERTY(int recordQuality READ recordQuality WRITE setRecordQuality NOTIFY recordQualityChanged)
    Q_PROPERTY(vornic::VNLogoContext *logoContext READ logoContext CONSTANT)
    Q_PROPERTY(bool enableAudio READ enableAudio WRITE setEnableAudio NOTIFY enableAudioChanged)
    Q_PROPERTY(bool recordsSystemSound READ recordsSystemSound WRITE setRecordsSystemSound NOTIFY
                   recordsSystemSoundChanged)
    Q_PROPERTY(int inputLevel READ inputLevel WRITE setInputLevel NOTIFY inputLevelChanged)
    Q_PROPERTY(int systemLevel READ systemLevel WRITE setSystemLevel NOTIFY systemLevelChanged)
    Q_PROPERTY(bool stopsAfterTime READ stopsAfterTime WRITE setStopsAfterTime NOTIFY stopsAfterTimeChanged)
    Q_PROPERTY(double stopAfter READ stopAfter WRITE setStopAfter NOTIFY stopAfterChanged)
    Q_PROPERTY(bool showInFinderWhenFinished READ showInFinderWhenFinished WRITE setShowInFinderWhenFinished
                   NOTIFY showInFinderWhenFinishedChanged)
    Q_PROPERTY(bool openRecordedWhenFinished READ openRecordedWhenFinished WRITE setOpenRecordedWhenFinished
                   NOTIFY openRecordedWhenFinishedChanged)
    Q_PROPERTY(bool isRecordFullScreen READ isRecordFullScreen WRITE setIsRecordFullScreen NOTIFY
                   isRecordFullScreenChanged)
    Q_PROPERTY(QRectF selectedRect READ selectedRect WRITE setSelectedRect NOTIFY selectedRectChanged)
    Q_PROPERTY(double offsetX READ offsetX WRITE setOffsetX NOTIFY offsetXChanged)
    Q_PROPERTY(double offsetY READ offsetY WRITE setOffsetY NOTIFY offsetYChanged)
    Q_PROPERTY(double width READ width WRITE setWidth NOTIFY widthChanged)
    Q_PROPERTY(double height READ height WRITE setHeight NOTIFY heightChanged)
    Q_PROPERTY(double minWidth READ minWidth CONSTANT)
    Q_PROPERTY(double maxWidth READ maxWidth NOTIFY maxWidthChanged)
    Q_PROPERTY(double minHeight READ minHeight CONSTANT)
    Q_PROPERTY(double maxHeight READ maxHeight NOTIFY maxHeightChanged)
    Q_PROPERTY(double minOffsetX READ minOffsetX CONSTANT)
    Q_PROPERTY(double maxOffsetX READ maxOffsetX NOTIFY maxOffsetXChanged)
    Q_PROPERTY(double minOffsetY READ minOffsetY CONSTANT)
    Q_PROPERTY(double maxOffsetY READ maxOffsetY NOTIFY maxOffsetYChanged)
public:
    VNOption();
    ~VNOption() override;

    /// Never null: what the archive does not hold is zero, not the default, and nothing is clamped.
    [[nodiscard]] static std::unique_ptr<VNOption> createWithCoder(const KeyedUnarchiver &coder);
    void encodeWithCoder(KeyedArchiver &coder) const;

    /// 0 records the full main display, 1 the selected rectangle. An archive may hold any other number: it is
    /// kept, and recorded like 0.
    [[nodiscard]] int recordRegion() const { return _recordRegion; }
    void setRecordRegion(int region);
    /// What decides between rectangle and display, wherever one of them is shown, edited or recorded.
    [[nodiscard]] bool recordsRectangle() const { return _recordRegion == 1; }
    /// Whether the number is 0: what the check box shows.
    [[nodiscard]] bool isRecordFullScreen() const { return _recordRegion == 0; }
    void setIsRecordFullScreen(bool fullScreen);
    /// The number of a RecordQuality, or any other that an archive held.
    [[nodiscard]] int recordQuality() const { return _recordQuality; }
    void setRecordQuality(int quality);
    /// recordQuality by name, for all who decide by it.
    [[nodiscard]] RecordQuality quality() const { return static_cast<RecordQuality>(_recordQuality); }
    [[nodiscard]] bool enableAudio() const { return _enableAudio; }
    void setEnableAudio(bool enable);
    /// What the system plays is recorded too, wherever sound is.
    [[nodiscard]] bool recordsSystemSound() const { return m_recordsSystemSound; }
    void setRecordsSystemSound(bool records);
    /// How loud the input and the system are in the movie, in percent; from 0 to maxLevel.
    static constexpr int maxLevel = 150;
    [[nodiscard]] int inputLevel() const { return m_inputLevel; }
    void setInputLevel(int percent);
    [[nodiscard]] int systemLevel() const { return m_systemLevel; }
    void setSystemLevel(int percent);
    /// A recording ends by itself when it is stopAfter() long.
    [[nodiscard]] bool stopsAfterTime() const { return m_stopsAfterTime; }
    void setStopsAfterTime(bool stops);
    /// In whole seconds, from 1 to maxStopAfter.
    static constexpr int maxStopAfter = 100 * 60 * 60 - 1;
    [[nodiscard]] double stopAfter() const { return m_stopAfter; }
    void setStopAfter(double seconds);
    [[nodiscard]] bool showInFinderWhenFinished() const { return _showInFinder; }
    void setShowInFinderWhenFinished(bool show);
    [[nodiscard]] bool openRecordedWhenFinished() const { return _openRecorded; }
    void setOpenRecordedWhenFinished(bool open);
    /// Never null, the same for the object's life; made with its defaults at the first call.
    [[nodiscard]] VNLogoContext *logoContext();

    [[nodiscard]] QRectF selectedRect() const { return _selectedRect; }
    /// Stores any rectangle as it is; keeping it on the display is the caller's part.
    void setSelectedRect(const QRectF &rectangle);
    [[nodiscard]] double offsetX() const { return _selectedRect.x(); }
    [[nodiscard]] double offsetY() const { return _selectedRect.y(); }
    [[nodiscard]] double width() const { return _selectedRect.width(); }
    [[nodiscard]] double height() const { return _selectedRect.height(); }
    /// Each stores its value within its two bounds, which depend on the other members; where the upper bound
    /// is below the lower one, the upper bound is stored.
    void setOffsetX(double x);
    void setOffsetY(double y);
    void setWidth(double width);
    void setHeight(double height);
    [[nodiscard]] double minWidth() const { return 160; }
    [[nodiscard]] double maxWidth() const { return screenWidth() - offsetX(); }
    [[nodiscard]] double minHeight() const { return 120; }
    [[nodiscard]] double maxHeight() const { return screenHeight() - offsetY(); }
    [[nodiscard]] double minOffsetX() const { return 0; }
    [[nodiscard]] double maxOffsetX() const { return screenWidth() - width(); }
    [[nodiscard]] double minOffsetY() const { return 0; }
    [[nodiscard]] double maxOffsetY() const { return screenHeight() - height(); }

    /// The main display now; all zeros when there is none.
    [[nodiscard]] static QRectF screenFrame();
    [[nodiscard]] static double screenWidth();
    [[nodiscard]] static double screenHeight();
    /// To and from display coordinates, which have their origin at the main display's upper left, y down.
    [[nodiscard]] static QPointF convertScreenPointToQuartz(QPointF point);
    [[nodiscard]] static QPointF convertScreenPointFromQuartz(QPointF point);
    [[nodiscard]] static QRectF convertScreenRectToQuartz(const QRectF &rectangle);
    [[nodiscard]] static QRectF convertScreenRectFromQuartz(const QRectF &rectangle);

    [[nodiscard]] static QByteArrayList keyPathsForValuesAffectingIsRecordFullScreen();
    [[nodiscard]] static QByteArrayList keyPathsForValuesAffectingWidth();
    [[nodiscard]] static QByteArrayList keyPathsForValuesAffectingHeight();
    [[nodiscard]] static QByteArrayList keyPathsForValuesAffectingOffsetX();
    [[nodiscard]] static QByteArrayList keyPathsForValuesAffectingOffsetY();
    [[nodiscard]] static QByteArrayList keyPathsForValuesAffectingMaxWidth();
    [[nodiscard]] static QByteArrayList keyPathsForValuesAffectingMaxHeight();
    [[nodiscard]] static QByteArrayList keyPathsForValuesAffectingMaxOffsetX();
    [[nodiscard]] static QByteArrayList keyPathsForValuesAffectingMaxOffsetY();
    [[nodiscard]] static QByteArrayList keyPathsForValuesAffectingSelectedRect();

signals:
    void recordRegionChanged();
    void recordQualityChanged();
    void enableAudioChanged();
    void recordsSystemSoundChanged();
    void inputLevelChanged();
    void systemLevelChanged();
    void stopsAfterTimeChanged();
    void stopAfterChanged();
    void showInFinderWhenFinishedChanged();
    void openRecordedWhenFinishedChanged();
    void isRecordFullScreenChanged();
    void selectedRectChanged();
    void offsetXChanged();
    void offsetYChanged();
    void widthChanged();
    void heightChanged();
    void maxWidthChanged();
    void maxHeightChanged();
    void maxOffsetXChanged();
    void maxOffsetYChanged();

private:
    explicit VNOption(const KeyedUnarchiver &coder);

    void declareDependencies();

    [[maybe_unused]] int _quality = 0; ///< takes part in nothing
    int _recordRegion = 0;
    QRectF _selectedRect;
    std::unique_ptr<VNLogoContext> _logoContext;
    bool _enableAudio = false;
    bool m_recordsSystemSound = false;
    int m_inputLevel = 100;
    int m_systemLevel = 100;
    bool m_stopsAfterTime = false;
    int m_stopAfter = 10 * 60; ///< seconds
    bool _showInFinder = false;
    bool _openRecorded = false;
    int _recordQuality = 0;
};

} // namespace vornic
