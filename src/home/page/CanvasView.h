// The canvas for a request, as a page or as one archive of its pictures: asks each widget for a
// snapshot, to know which samples are made for it. Belongs to one thread.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "home/cards/Samples.h"
#include "home/extension/PreviewSession.h"
#include "home/extension/Supervisor.h"
#include "home/page/CanvasPage.h"
#include "home/page/EngineerView.h"
#include "home/server/WebMessages.h"

namespace quillpad::home {

class CanvasView {
 public:
  // The first three must outlive the view.
  CanvasView(
      const Supervisor& supervisor,
      PreviewSession& previews,
      EngineerView& engineer,
      SampleFolder samples)
      : supervisor_(supervisor),
        previews_(previews),
        engineer_(engineer),
        samples_(std::move(samples)) {}

  LaterAnswer page(const Moment& now, const WebRequest& request, const PageFrame& frame);

  // The pictures that the page would show.
  WebReply archive(const Moment& now, const WebRequest& request);

 private:
  using LaterModel = std::function<std::optional<CanvasModel>()>;
  LaterModel model(const Moment& now, const WebRequest& request, const Language& language);

  const Supervisor& supervisor_;
  PreviewSession& previews_;
  EngineerView& engineer_;
  SampleFolder samples_;
  std::shared_ptr<char> archives_ = std::make_shared<char>();  // each that is sent holds it
};

}  // namespace quillpad::home
