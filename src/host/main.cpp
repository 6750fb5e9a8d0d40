#include "host/Widgets.h"
#include "platform/widgets/WidgetBundle.h"

int main() { return widgets::main(quillpad::Widgets()); }
