#pragma once

#include <QFileDialog>

class QLabel;

namespace vornic {

/// A file panel for one picture, with a preview beside the list of files.
///
/// Made for each choice, as a child of the window that it stands on; main thread only. It starts in the user's folder
/// for pictures, and then in the folder of the last picture that was chosen.
class ImagePanel : public QFileDialog
{
    Q_OBJECT
public:
    ImagePanel(QWidget *parent, const QString &title);

private:
    void addPreview();
    void showPreview(const QString &path);

    QLabel *m_picture = nullptr;
    QLabel *m_size = nullptr; ///< of the picture, as text
};

} // namespace vornic
