#include "SkyPolicy.h"

#include <QGuiApplication>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>
#include <QSGRendererInterface>

namespace Kestro {

bool SkyPolicy::isSoftwareRenderer(const QByteArray& name)
{
    const QByteArray lower = name.toLower();
    return lower.contains("llvmpipe") || lower.contains("softpipe") || lower.contains("swrast") ||
           lower.contains("software") || lower.startsWith("swr");
}

SkyPolicy::SkyPolicy(QObject* parent) : QObject(parent)
{
    // Only an OpenGL renderer can be drawing on the processor (the software
    // scene graph draws no shaders at all: the ground shows).
    const auto api = QQuickWindow::graphicsApi();
    if (api != QSGRendererInterface::OpenGL && api != QSGRendererInterface::Unknown)
        m_calm = false;

    const QByteArray chosen = qgetenv("KESTRO_SKY_FPS");
    if (chosen == "still") {
        m_still = true;
        m_chosen = true;
    } else if (!chosen.isEmpty()) {
        bool ok = false;
        const int rate = chosen.toInt(&ok);
        if (ok && rate >= 0) {
            m_calm = false;
            m_chosen = true;
            m_framesPerSecond = rate;
        }
    }
}

void SkyPolicy::setCalm(bool calm)
{
    if (m_calm == calm)
        return;
    m_calm = calm;
    emit calmChanged();
}

void SkyPolicy::learnFrom(QObject* object)
{
    auto* window = qobject_cast<QQuickWindow*>(object);
    if (m_asked || m_chosen || !m_calm || !window)
        return;
    m_asked = true;
    // Once, on the render thread, where the window's context is current.
    auto connection = std::make_shared<QMetaObject::Connection>();
    QPointer<SkyPolicy> self(this);
    *connection = connect(
        window, &QQuickWindow::beforeRendering, window,
        [self, connection] {
            QObject::disconnect(*connection);
            QOpenGLContext* context = QOpenGLContext::currentContext();
            const auto* name =
                context ? reinterpret_cast<const char*>(context->functions()->glGetString(GL_RENDERER))
                        : nullptr;
            const bool software = !name || isSoftwareRenderer(QByteArray(name));
            QMetaObject::invokeMethod(
                qApp,
                [self, software] {
                    if (self)
                        self->setCalm(software);
                },
                Qt::QueuedConnection);
        },
        Qt::DirectConnection);
    window->update();
}

} // namespace Kestro
