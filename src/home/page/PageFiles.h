// The files of the page folder, as they were when the program was built.
#pragma once

#include <string_view>

namespace quillpad::home::page {

extern const std::string_view pageHtml;
extern const std::string_view homeHtml;
extern const std::string_view cardHtml;
extern const std::string_view badgeHtml;
extern const std::string_view linkHtml;
extern const std::string_view timeHtml;
extern const std::string_view timesPartHtml;
extern const std::string_view onPhoneHtml;
extern const std::string_view galleryItemHtml;
extern const std::string_view galleryHtml;
extern const std::string_view galleryWidgetHtml;
extern const std::string_view galleryPairHtml;
extern const std::string_view changesHtml;
extern const std::string_view changesItemHtml;
extern const std::string_view changesOverlayHtml;
extern const std::string_view changesPictureHtml;
extern const std::string_view styleCss;
extern const std::string_view appearanceJs;
extern const std::string_view textsJs;
extern const std::string_view orderJs;
extern const std::string_view stateJs;
extern const std::string_view tapJs;
extern const std::string_view wallCss;
extern const std::string_view wallJs;
extern const std::string_view eventsJs;
extern const std::string_view homeJs;
extern const std::string_view canvasHtml;
extern const std::string_view canvasWidgetHtml;
extern const std::string_view canvasRowHtml;
extern const std::string_view canvasCellHtml;
extern const std::string_view canvasCss;
extern const std::string_view canvasJs;
extern const std::string_view figureHtml;
extern const std::string_view figuresJs;
extern const std::string_view isolatedHtml;
extern const std::string_view processHtml;
extern const std::string_view processRowHtml;
extern const std::string_view processNoteHtml;
extern const std::string_view processCss;
extern const std::string_view processJs;
extern const std::string_view switchboardHtml;
extern const std::string_view switchboardFormHtml;
extern const std::string_view switchboardCss;
extern const std::string_view switchboardJs;
extern const std::string_view engineerHtml;
extern const std::string_view engineerColumnHtml;
extern const std::string_view engineerPictureHtml;
extern const std::string_view optionHtml;
extern const std::string_view problemHtml;
extern const std::string_view languageFieldHtml;
extern const std::string_view engineerBoxesHtml;
extern const std::string_view engineerBoxHtml;
extern const std::string_view engineerImageHtml;
extern const std::string_view engineerProblemHtml;
extern const std::string_view engineerCss;
extern const std::string_view engineerJs;
extern const std::string_view inspectorHtml;
extern const std::string_view inspectorNodeHtml;
extern const std::string_view inspectorItemHtml;
extern const std::string_view inspectorWarningHtml;
extern const std::string_view inspectorWarningsHtml;
extern const std::string_view inspectorCss;
extern const std::string_view inspectorJs;

}  // namespace quillpad::home::page
