#include "player/video_surface.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPainter>
#include <array>
#include <mpv/render.h>

#include "player/look.h"

namespace clipfix {

void EndDrawing::operator()(mpv_render_context* context) const {
    mpv_render_context_set_update_callback(context, nullptr, nullptr);
    mpv_render_context_free(context);
}

SoftwareSurface::SoftwareSurface(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void SoftwareSurface::Connect(mpv_handle* engine) {
    std::array<char, 3> api{"sw"};
    static_assert(MPV_RENDER_API_TYPE_SW[0] == 's' && MPV_RENDER_API_TYPE_SW[1] == 'w');
    std::array parameters{mpv_render_param{MPV_RENDER_PARAM_API_TYPE, api.data()},
                          mpv_render_param{MPV_RENDER_PARAM_INVALID, nullptr}};
    mpv_render_context* context = nullptr;
    if (mpv_render_context_create(&context, engine, parameters.data()) < 0) {
        return;
    }
    context_.reset(context);
    mpv_render_context_set_update_callback(
        context,
        [](void* self) {
            auto* surface = static_cast<SoftwareSurface*>(self);
            QMetaObject::invokeMethod(
                surface, [surface] { surface->TakeUpdate(); }, Qt::QueuedConnection);
        },
        this);
}

void SoftwareSurface::TakeUpdate() {
    if (context_ && (mpv_render_context_update(context_.get()) & MPV_RENDER_UPDATE_FRAME) != 0) {
        Draw();
        update();
    }
}

void SoftwareSurface::Draw() {
    const QSize size = this->size() * devicePixelRatioF();
    if (!context_ || size.isEmpty()) {
        return;
    }
    if (image_.size() != size) {
        image_ = QImage(size, QImage::Format_RGB32);
        image_.fill(look::kStage);
    }
    std::array<int, 2> extent{size.width(), size.height()};
    auto stride = static_cast<std::size_t>(image_.bytesPerLine());
    std::array<char, 5> format{"bgr0"};  // the bytes of Format_RGB32 on a little-endian machine
    int wait = 0;
    std::array parameters{
        mpv_render_param{MPV_RENDER_PARAM_SW_SIZE, extent.data()},
        mpv_render_param{MPV_RENDER_PARAM_SW_FORMAT, format.data()},
        mpv_render_param{MPV_RENDER_PARAM_SW_STRIDE, &stride},
        mpv_render_param{MPV_RENDER_PARAM_SW_POINTER, image_.bits()},
        mpv_render_param{MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &wait},
        mpv_render_param{MPV_RENDER_PARAM_INVALID, nullptr},
    };
    mpv_render_context_render(context_.get(), parameters.data());
}

void SoftwareSurface::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (image_.isNull()) {
        painter.fillRect(rect(), look::kStage);
    } else {
        painter.drawImage(rect(), image_);
    }
}

void SoftwareSurface::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Draw();
}

bool HasGraphicsCard() {
    const QString screen = QGuiApplication::platformName();
    if (screen == QLatin1String("offscreen") || screen == QLatin1String("minimal")) {
        return false;
    }
    QOpenGLContext context;
    QOffscreenSurface surface;
    surface.create();
    if (!context.create() || !context.makeCurrent(&surface)) {
        return false;
    }
    const auto* name = context.functions()->glGetString(GL_RENDERER);
    const QByteArray renderer(reinterpret_cast<const char*>(name));
    context.doneCurrent();
    constexpr std::array kOnTheProcessor{"llvmpipe", "softpipe", "swrast", "Software"};
    return !renderer.isEmpty() &&
           std::none_of(kOnTheProcessor.begin(), kOnTheProcessor.end(),
                        [&](const char* word) { return renderer.contains(word); });
}

}  // namespace clipfix
