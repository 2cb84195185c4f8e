#include "display/shared_pixels.h"

#include "display/bitmap_image.h"

#include <sys/mman.h>
#include <unistd.h>

#include <utility>

namespace vornic {

namespace {

class LeasedImage final : public BitmapImage
{
public:
    LeasedImage(std::shared_ptr<SharedPixels> pixels,
                int width,
                int height,
                std::vector<std::uint64_t> bandVersions)
        : BitmapImage(width, height, qsizetype { width } * 4, pixels->data(), std::move(bandVersions))
        , m_pixels(std::move(pixels))
    {
        m_pixels->addImage();
    }

    ~LeasedImage() override { m_pixels->dropImage(); }

private:
    std::shared_ptr<SharedPixels> m_pixels;
};

} // namespace

std::shared_ptr<SharedPixels> SharedPixels::create(std::size_t size)
{
    const int fileDescriptor = memfd_create("vornic-picture", MFD_CLOEXEC);
    if (fileDescriptor < 0)
        return nullptr;
    void *data = MAP_FAILED;
    if (ftruncate(fileDescriptor, static_cast<off_t>(size)) == 0)
        data = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fileDescriptor, 0);
    if (data == MAP_FAILED) {
        close(fileDescriptor);
        return nullptr;
    }
    return std::shared_ptr<SharedPixels>(new SharedPixels(fileDescriptor, static_cast<uchar *>(data), size));
}

SharedPixels::SharedPixels(int fileDescriptor, uchar *data, std::size_t size)
    : m_fileDescriptor(fileDescriptor)
    , m_data(data)
    , m_size(size)
{
}

SharedPixels::~SharedPixels()
{
    munmap(m_data, m_size);
    if (m_fileDescriptor >= 0)
        close(m_fileDescriptor);
}

int SharedPixels::takeFileDescriptor()
{
    return std::exchange(m_fileDescriptor, -1);
}

std::shared_ptr<const BitmapImage> imageOver(std::shared_ptr<SharedPixels> pixels,
                                             int width,
                                             int height,
                                             std::vector<std::uint64_t> bandVersions)
{
    return std::make_shared<const LeasedImage>(std::move(pixels), width, height, std::move(bandVersions));
}

} // namespace vornic
