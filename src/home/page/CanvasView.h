// The canvas for a request: asks each widget for a snapshot, to know which samples are made for it.
// Belongs to one thread.
#pragma once

#include <utility>

#include "home/extension/PreviewSession.h"
#include "home/extension/Supervisor.h"
#include "home/page/CanvasPage.h"
#include "home/page/Samples.h"
#include "home/server/WebMessages.h"

namespace quillpad::home {

class CanvasView {
 public:
  // The first two must outlive the view.
  CanvasView(const Supervisor& supervisor, PreviewSession& previews, SampleFolder samples)
      : supervisor_(supervisor), previews_(previews), samples_(std::move(samples)) {}

  LaterAnswer page(const Moment& now, const WebRequest& request, const PageFrame& frame);

 private:
  const Supervisor& supervisor_;
  PreviewSession& previews_;
  SampleFolder samples_;
};

}  // namespace quillpad::home
