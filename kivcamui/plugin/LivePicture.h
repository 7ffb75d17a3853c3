// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/TSharedPtr.h>
#include <kivcam/IFrameListener.h>
#include <kivcam/SCameraInfo.h>
#include <kivcamui/kivcamui_export.h>
#include <kivreduce/CFilterFactory.h>

#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

namespace kiv::cam {
class IFrameSource;
}

namespace kiv::cam::ui {

// The live picture of a controller panel: the newest image of a frame source, reduced to a
// picture the panel shows, and what has been shown of the stream since it started. A panel's
// model owns one, given its controller's frame source, which must outlive it.
//
// Images come in on the stream's thread, where each is reduced to an 8-bit picture: with the
// camera's reduction filter, or, for a camera of more than 8 bits a sample with the automatic
// range off, by mapping rangeLow..rangeHigh to black..white. The GUI thread only swaps in the
// finished picture, at most one at a time: a newer picture replaces one the GUI has not taken
// yet, and droppedFrames counts it. It takes no more pictures than the primary screen shows (at
// most one per refresh, 60 a second without a screen). The picture leaves the stream in its
// destructor, and from then on no image reaches it.
class KIVCAMUI_EXPORT LivePicture : public QObject, private IFrameListener {
    Q_OBJECT
    // The newest picture shown; it stays when the stream stops.
    Q_PROPERTY(QImage image READ image NOTIFY imageChanged)
    // Pictures shown, and the camera's images not shown, since the stream started.
    Q_PROPERTY(qint64 frameCount READ frameCount NOTIFY imageChanged)
    Q_PROPERTY(qint64 droppedFrames READ droppedFrames NOTIFY imageChanged)
    Q_PROPERTY(double measuredFrameRate READ measuredFrameRate NOTIFY measuredFrameRateChanged)
    Q_PROPERTY(bool streaming READ streaming NOTIFY streamingChanged)
    // The stream's images, e.g. "640 x 512, Mono14, 14 bits"; empty before the first stream.
    Q_PROPERTY(QString imageFormat READ imageFormat NOTIFY cameraChanged)
    // The display range of cameras of more than 8 bits a sample (hasRange), in the samples' own
    // scale, 0 to rangeMaximum (2^adBits - 1).
    Q_PROPERTY(bool hasRange READ hasRange NOTIFY cameraChanged)
    Q_PROPERTY(int rangeMaximum READ rangeMaximum NOTIFY cameraChanged)
    Q_PROPERTY(bool autoRange READ autoRange WRITE setAutoRange NOTIFY rangeChanged)
    Q_PROPERTY(int rangeLow READ rangeLow WRITE setRangeLow NOTIFY rangeChanged)
    Q_PROPERTY(int rangeHigh READ rangeHigh WRITE setRangeHigh NOTIFY rangeChanged)

public:
    // Subscribes to source; a stream that runs already is shown when the event loop next runs.
    explicit LivePicture(IFrameSource* source, QObject* parent = nullptr);
    ~LivePicture() override;

    // The camera of the running stream, or of the last one.
    const SCameraInfo& camera() const { return m_camera; }
    QImage image() const { return m_image; }
    qint64 frameCount() const { return m_frameCount; }
    qint64 droppedFrames() const { return m_droppedFrames; }
    double measuredFrameRate() const { return m_measuredFrameRate; }
    bool streaming() const { return m_streaming; }
    QString imageFormat() const { return m_imageFormat; }
    bool hasRange() const { return m_rangeMaximum > 0; }
    int rangeMaximum() const { return m_rangeMaximum; }
    bool autoRange() const { return m_range.automatic; }
    int rangeLow() const { return m_range.low; }
    int rangeHigh() const { return m_range.high; }
    // The range applies from the next image on. Values are clamped to 0..rangeMaximum, and
    // rangeLow stays below rangeHigh (a value that would cross the other moves it along).
    void setAutoRange(bool automatic);
    void setRangeLow(int low);
    void setRangeHigh(int high);

Q_SIGNALS:
    // A stream started: camera, imageFormat, hasRange and rangeMaximum are its, and the picture
    // and its counts start again. Emitted before streamingChanged.
    void cameraChanged();
    void imageChanged();
    void measuredFrameRateChanged();
    void streamingChanged();
    void rangeChanged();

private:
    // How samples of more than 8 bits are shown.
    struct SRange {
        bool automatic = true;
        int low = 0;
        int high = 0;

        bool operator==(const SRange&) const = default;
    };

    // The stream's side, on its threads (IFrameListener).
    void streamStarted(const SCameraInfo& camera) override;
    void frameArrived(const TSharedPtr<const CImage>& frame) override;
    void streamStopped() override;
    QImage reduce(const TSharedPtr<const CImage>& frame);
    QImage mapRange(const CImage& frame, const SRange& range);

    // The GUI thread's side.
    void showStarted(const SCameraInfo& camera, std::uint64_t stream);
    void showPicture();
    void showStopped();
    void setRange(SRange range);
    void measure();

    IFrameSource* const m_source;

    // Touched only within listener calls, which never overlap.
    reduce::FilterFunction m_filter = nullptr;
    reduce::FilterFunction m_fallbackFilter = nullptr;
    bool m_ranged = false; // the camera's samples take a display range
    std::uint64_t m_stream = 0; // counts the streams, so that the GUI takes only its own
    bool m_arrived = false; // an image of this stream has arrived
    std::uint64_t m_firstNumber = 0; // the number of the first
    // The grey value of each significant sample value, for the range it was made for.
    std::vector<QRgb> m_greys;
    SRange m_greysRange;
    std::uint32_t m_greysMask = 0;

    // Shared by both sides: the range the GUI asks for, and the hand-over of the newest
    // picture, with its number, its stream and the number of that stream's first image.
    std::mutex m_mutex;
    SRange m_requestedRange;
    QImage m_pending;
    std::uint64_t m_pendingNumber = 0;
    std::uint64_t m_pendingStream = 0;
    std::uint64_t m_pendingFirst = 0;
    std::atomic<bool> m_pictureAnnounced{false};

    // The GUI thread's state.
    SCameraInfo m_camera;
    std::uint64_t m_shownStream = 0;
    bool m_streaming = false;
    QString m_imageFormat;
    int m_rangeMaximum = 0;
    SRange m_range;
    QImage m_image;
    qint64 m_frameCount = 0;
    qint64 m_droppedFrames = 0;
    std::uint64_t m_lastNumber = 0;
    double m_measuredFrameRate = 0;
    QElapsedTimer m_measureTimer;
    int m_measuredFrames = 0;
    // No more pictures than the screen shows (see showPicture).
    QElapsedTimer m_lastShown;
    QTimer m_paceTimer{this};
};

} // namespace kiv::cam::ui
