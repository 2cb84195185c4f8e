// window_sheet PICTURE: the main window in its modes, the sheets, the questions and the stop bar, as one
// picture to look at. QT_SCALE_FACTOR=2 and LC_ALL=de_DE.UTF-8 show how they are there.

#include "app/VornicAppDelegate.h"
#include "app/session/error_text.h"
#include "app/session/session_fakes.h"
#include "app/session/translations.h"
#include "app/window/VNAlertFreeSpace.h"
#include "app/window/VNEncoderProgress.h"
#include "app/window/VNHintWndCtroller.h"
#include "app/window/main_window.h"
#include "app/window/recovery.h"
#include "app/window/stop_item.h"
#include "app/window/unfinished_line.h"
#include "app/window/window_front_end.h"
#include "base/error.h"
#include "controls/VNColorWell.h"
#include "controls/skin_colors.h"
#include "stored_recording_maker.h"
#include "support/wait_until.h"
#include "window_main.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QPainter>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace {

using namespace vornic;

void settle(int milliseconds = 60)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

/// Rows of pictures, one beneath the other.
class Sheet
{
public:
    void add(QWidget &window)
    {
        settle();
        m_row += window.grab().toImage();
    }
    void endRow() { m_rows += std::exchange(m_row, {}); }
    bool save(const QString &path)
    {
        endRow();
        constexpr int gap = 16;
        QSize size(gap, gap);
        for (const QList<QImage> &row : m_rows) {
            QSize rowSize(gap, 0);
            for (const QImage &picture : row)
                rowSize = { rowSize.width() + picture.width() + gap,
                            std::max(rowSize.height(), picture.height()) };
            size = { std::max(size.width(), rowSize.width()), size.height() + rowSize.height() + gap };
        }
        QImage sheet(size, QImage::Format_RGB32);
        sheet.fill(QColor(0x80, 0x90, 0xa0));
        QPainter painter(&sheet);
        int y = gap;
        for (const QList<QImage> &row : m_rows) {
            int x = gap;
            int height = 0;
            for (QImage picture : row) {
                picture.setDevicePixelRatio(1);
                painter.drawImage(x, y, picture);
                x += picture.width() + gap;
                height = std::max(height, picture.height());
            }
            y += height + gap;
        }
        painter.end();
        return sheet.save(path);
    }

private:
    QList<QList<QImage>> m_rows;
    QList<QImage> m_row;
};

/// Asks, and photographs the question.
template<typename Ask>
void addQuestion(Sheet &sheet, const Ask &ask)
{
    QTimer::singleShot(100, qApp, [&sheet] {
        QWidget *question = QApplication::activeModalWidget();
        if (!question)
            return;
        sheet.add(*question);
        question->close();
    });
    ask();
}

void addSheets(Sheet &sheet, MainWindow &window)
{
    VNHintWndCtroller::shareHintWndCtroller().beginSheetModalForWindow(&window, {});
    sheet.add(*window.findChild<QDialog *>());
    VNHintWndCtroller::shareHintWndCtroller().cancelAction();
    settle();
    VNAlertFreeSpace::shareAlertFreeSpace().beginSheetForWindow(&window, {});
    sheet.add(*window.findChild<QDialog *>());
    VNAlertFreeSpace::shareAlertFreeSpace().cancelAction();
    settle();
    VNEncoderProgress::shareEncoderProgress().beginSheet(&window, 5400, [] {});
    settle(400);
    VNEncoderProgress::shareEncoderProgress().setPercent(3.2);
    sheet.add(*window.findChild<QDialog *>());
    VNEncoderProgress::shareEncoderProgress().endSheet();
    sheet.endRow();
}

/// The line that tells of unfinished recordings, their list, and the question before one is deleted.
void addUnfinished(Sheet &sheet, VornicAppDelegate &delegate, MainWindow &window, WindowFrontEnd &frontEnd)
{
    const QString path = QStringLiteral("/home/user/Videos/Talk.mp4");
    Recovery recovery(delegate, frontEnd.questions(), window);
    const auto isRead = [&recovery](qsizetype count) {
        recovery.recordings().read();
        test::waitUntil([&] { return recovery.recordings().all().size() == count; });
        settle(300); // its picture
    };
    test::storeRecording(path, 130, QColor(0x30, 0x60, 0x90));
    isRead(1);
    sheet.add(window);
    addQuestion(sheet, [&window] { window.findChild<QPushButton *>("deleteUnfinishedButton")->click(); });
    sheet.endRow();
    test::storeRecording(path, 2530, QColor(0x70, 0x40, 0x20));
    test::damageJournal(test::storeRecording(path, 10));
    isRead(3);
    sheet.add(window);
    emit window.unfinishedAsked();
    settle(300);
    sheet.add(*window.findChild<QDialog *>("UnfinishedSheet"));
    window.findChild<QDialog *>("UnfinishedSheet")->close();
    window.unfinishedLine().showRecordings({});
    settle();
    sheet.endRow();
}

void addQuestions(Sheet &sheet, WindowFrontEnd &frontEnd)
{
    addQuestion(sheet, [&] {
        static_cast<void>(frontEnd.questions().confirmQuit(
            RecordingSession::tr("Are you sure to quit it?"),
            RecordingSession::tr(
                "The application is recording video, video recording will stop if it quit.")));
    });
    addQuestion(sheet, [&] {
        frontEnd.questions().alert(
            RecordingSession::tr("Disk free space is too low"),
            RecordingSession::tr("It will terminate recording because of disk space is insufficient"));
    });
    addQuestion(sheet, [&] {
        frontEnd.questions().alertError(errorText({ .kind = ErrorKind::DiskFull,
                                                    .name = QStringLiteral("/home/user/Videos/Untitled.mp4"),
                                                    .reason = {} }));
    });
    StopItem item("00:12:34", {});
    item.allowBar();
    for (QWidget *bar : QApplication::topLevelWidgets()) {
        if (bar->objectName() == "stopBar")
            sheet.add(*bar);
    }
    sheet.endRow();
}

/// The panels of files, fonts and colours.
void addPanels(Sheet &sheet, WindowFrontEnd &frontEnd, MainWindow &window)
{
    const auto add = [&sheet] {
        settle(200);
        for (QWidget *panel : QApplication::topLevelWidgets()) {
            if (panel->isVisible() && !qobject_cast<QMainWindow *>(panel) && qobject_cast<QDialog *>(panel)) {
                sheet.add(*panel);
                panel->close();
            }
        }
        settle();
    };
    frontEnd.questions().runSavePanel(QStringLiteral("Untitled"), QStringLiteral("mp4"), [](const auto &) {});
    add();
    FrontEnd faces = frontEnd.frontEnd();
    faces.logoPanels.chooseLogoImage([](const auto &) {});
    for (QFileDialog *panel : window.findChildren<QFileDialog *>()) {
        QImage picture(640, 360, QImage::Format_RGB32);
        picture.fill(Qt::darkGreen);
        const QString path = panel->directory().filePath(QStringLiteral("vornic-preview.png"));
        picture.save(path);
        emit panel->currentChanged(path);
        QFile::remove(path);
    }
    add();
    sheet.endRow();
    faces.logoPanels.orderFrontFontPanel(QFont(), [](const QFont &) {});
    add();
    auto *well = window.findChild<VNColorWell *>();
    well->setEnabled(true);
    well->popUp();
    add();
    sheet.endRow();
}

int paint(const QString &path)
{
    FakeFrontEnd fake;
    FakeAudioControl audioControl;
    audioControl.names
        = QStringList { "Built-in Audio Analog Stereo", "Monitor of Built-in Audio Analog Stereo" };
    VornicAppDelegate delegate(fake.frontEnd(), std::make_unique<VNOption>());
    delegate.setAudioControl(&audioControl);
    delegate.applicationDidFinishLaunching();
    MainWindow window(delegate);
    WindowFrontEnd frontEnd;
    frontEnd.setWindow(&window, [] {});
    window.show();
    Sheet sheet;
    sheet.add(window);
    delegate.options()->setRecordRegion(1);
    delegate.options()->setEnableAudio(true);
    delegate.recordRegionChanged();
    delegate.options()->logoContext()->setLogoValidate(true);
    sheet.add(window);
    sheet.endRow();
    QImage picture(300, 180, QImage::Format_RGB32);
    QPainter painter(&picture);
    painter.fillRect(picture.rect(), QGradient(QGradient::SunnyMorning));
    painter.end();
    delegate.options()->logoContext()->setNSImage(picture);
    delegate.options()->logoContext()->setLogoType(1);
    sheet.add(window);
    window.setBusy(true);
    sheet.add(window);
    window.setBusy(false);
    sheet.endRow();
    addSheets(sheet, window);
    addUnfinished(sheet, delegate, window, frontEnd);
    addQuestions(sheet, frontEnd);
    addPanels(sheet, frontEnd, window);
    return sheet.save(path) ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.filePath("config").toUtf8());
    qputenv("XDG_CACHE_HOME", home.filePath("cache").toUtf8());
    setMainDisplay(std::make_shared<FakeDisplay>(QSize(1440, 900)));
    const QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("window_sheet PICTURE\n", stderr);
        return 2;
    }
    const Translations translations;
    QApplication::setStyle("Fusion");
    QApplication::setPalette(skinPalette());
    return paint(QString::fromLocal8Bit(argv[1]));
}
