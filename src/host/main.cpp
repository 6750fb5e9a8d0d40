#include <string>

#include "gateway/GatewayOrigin.h"
#include "host/Widgets.h"
#include "platform/widgets/WidgetBundle.h"

using namespace quillpad;

int main() {
  return widgets::main(
      quillpad::Widgets(),
      {.origins = {std::string(gatewayOrigin())}, .linkSchemes = {"quillpad"}});
}
