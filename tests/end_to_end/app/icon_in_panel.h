#pragma once

#include <gtest/gtest.h>

#include <string>

#include <QImage>

#include "tests/harness/desktop/tray_host_double.h"

// Returns whether the icon in the panel equals, pixel by pixel, the picture of this name in `resources`, at
// `scale` device pixels per point.
inline bool panelShows(test_support::TrayHostDouble& host, const std::string& resources,
                       const std::string& name, int scale = 1) {
  EXPECT_TRUE(host.saveIcon("/tmp/icon.png", std::to_string(20 * scale)));
  const auto load = [](const std::string& path) {
    return QImage(QString::fromStdString(path)).convertToFormat(QImage::Format_ARGB32_Premultiplied);
  };
  const QImage wanted = load(resources + "/" + name + (scale > 1 ? "@2x.png" : ".png"));
  EXPECT_EQ(wanted.size(), QSize(20, 20) * scale);
  return load("/tmp/icon.png") == wanted;
}
