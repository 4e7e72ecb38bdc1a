// Copyright 2026 The Veltmark authors.

#include "ui/splash_model.h"

namespace rz {

void SplashModel::Show() {
  if (shown_) return;
  const TwipSize screen = toolkit_.ScreenSize();
  left_ = (screen.width - kSize.width) / 2;
  top_ = (screen.height - kSize.height) / 2;
  toolkit_.ShowModeless(*this);
  shown_ = true;
}

void SplashModel::Close() {
  if (!shown_) return;
  shown_ = false;
  toolkit_.Close(*this);
}

}  // namespace rz
