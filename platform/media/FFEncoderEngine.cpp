#include "FFEncoderEngine.h"

namespace morvane {

FFEncoderEngine::FFEncoderEngine() {
    // The encoder is the context object: the connections go with it, and the listener is read at
    // delivery, so that it may be set or changed after construction.
    QObject::connect(&m_encoder, &FFEncoder::OnProgress, &m_encoder,
                     [this](int task, qint64 position, qint64 duration) {
                         if (EncoderListener* l = Listener()) l->OnProgress(task, position, duration);
                     });
    QObject::connect(&m_encoder, &FFEncoder::OnTerminate, &m_encoder,
                     [this](int task, bool finished, bool failed, const QString& message) {
                         if (EncoderListener* l = Listener()) l->OnTerminate(task, finished, failed, message);
                     });
    QObject::connect(&m_encoder, &FFEncoder::OnPreviewBitmap, &m_encoder,
                     [this](int task, int width, int height, const QByteArray& bgra) {
                         if (EncoderListener* l = Listener()) l->OnPreviewBitmap(task, width, height, bgra);
                     });
}

} // namespace morvane
