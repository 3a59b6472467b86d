#pragma once

#include <functional>

#include <QImage>
#include <QString>

namespace platform {

// The pixels that `make` has given under this key before, else those that it gives now; null ones are not
// kept. They share their memory until somebody draws into them. What is not asked for is forgotten after half
// a minute or so, and the memory of all that is kept is bounded: it is the toolkit's own cache of pictures,
// and nothing is kept without the toolkit. Main thread.
[[nodiscard]] QImage keptPixels(const QString& key, const std::function<QImage()>& make);

}  // namespace platform
