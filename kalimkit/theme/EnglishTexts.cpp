#include "kalimkit/theme/EnglishTexts.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "kalimkit/theme/Pens.h"

namespace kalim {

namespace {

constexpr std::pair<std::string_view, std::string_view> texts[] = {
    {"关闭", "Close"},
    {"发送", "Send"},
    {"完成", "Done"},
    {"取消", "Cancel"},
    {"还原", "Reset"},
    {"继续标注", "Keep Editing"},
    {"放弃修改", "Discard Changes"},
    {"好", "OK"},
    {"我知道了", "Got It"},
    {"面积不能超过2K", "The drawing may not be larger than 2K"},
    {"无法载入图片", "The Picture Cannot Be Opened"},
    {"载入此图片时出错", "Something went wrong when opening this picture"},
    {"打开新图片？", "Open Another Picture?"},
    {"当前的标注将会丢失", "What has been drawn will be lost"},
    {"打开", "Open"},
    {"继续上次的标注？", "Continue Last Drawing?"},
    {"上次的标注没有发送，重新开始会丢弃它", "Starting anew discards it"},
    {"继续", "Continue"},
    {"重新开始", "Start Anew"},
    {"请先完成裁剪", "Finish Cropping First"},
    {"离开裁剪后才能打开新图片", "Another picture can be opened after that"},
    {"剪贴板不可用", "The Clipboard Is Not Available"},
    {"请安装 xclip 以复制和粘贴图片", "Install xclip to copy and paste pictures"},
    {"剪贴板中没有图片", "There Is No Picture on the Clipboard"},
    {"继续编辑标注？", "Go On with the Drawing?"},
    {"此图片中保存了可编辑的标注", "This picture carries a drawing that can still be edited"},
    {"从图片开始", "Start from the Picture"},
    {"继续编辑", "Go On"},
    {"无法保存文档", "The Document Cannot Be Saved"},
    {"无法保存图片", "The Picture Cannot Be Saved"},
    {"内存不足", "There Is Not Enough Memory"},
    {"工具栏", "Tool bar"},
    {"状态栏", "Status bar"},
    {"其他颜色", "Other colours"},
    {"剪切", "Cut"},
    {"粘贴", "Paste"},
    {"层次", "Order"},
    {"对齐", "Align"},
    {"左对齐", "Align left"},
    {"右对齐", "Align right"},
    {"顶端对齐", "Align top"},
    {"底端对齐", "Align bottom"},
    {"锁定", "Lock"},
    {"全部解锁", "Unlock all"},
    {"全选", "Select all"},
    {"样式", "Style"},
    {"拷贝", "Copy"},
    {"已拷贝", "Copied"},
    {"保存", "Save"},
    {"另存为", "Save as"},
    {"已保存", "Saved"},
    {"已保存为 {}", "Saved as {}"},
    {"缩放", "Zoom"},
    {"放大", "Zoom in"},
    {"缩小", "Zoom out"},
    {"更多", "More"},
    {"撤销", "Undo"},
    {"重做", "Redo"},
    {"编辑", "Edit"},
    {"删除", "Delete"},
    {"画布", "Canvas"},
    {"确定", "OK"},
    {"颜色", "Colour"},
    {"粗细", "Line width"},
    {"遮盖方式", "Way to hide"},
    {"{}遮盖", "{} cover"},
    {"画笔", "Pen"},
    {"形状", "Shape"},
    {"裁剪工具栏", "Crop tool bar"},
    {"裁剪框", "Crop frame"},
    {"旋转", "Rotate"},
    {"红色", "Red"},
    {"橙色", "Orange"},
    {"黄色", "Yellow"},
    {"绿色", "Green"},
    {"蓝色", "Blue"},
    {"紫色", "Purple"},
    {"粉色", "Pink"},
    {"白色", "White"},
    {"灰色", "Grey"},
    {"黑色", "Black"},
    {"已选中", "Selected"},
    {"取色", "Pick a colour"},
    {"饱和度和明度", "Saturation and value"},
    {"色相", "Hue"},
    {"不透明度", "Opacity"},
    {"十六进制颜色", "Hexadecimal colour"},
    {"无", "None"},
    {"快捷键", "Keys"},
    {"空格", "Space"},
    {"拖动时按住", "Hold while dragging"},
    {"正方、正圆、15° 一步", "Squares, circles, steps of 15°"},
    {"从中心画", "From the centre"},
    {"不对齐参考线，或框选", "Leave guides, or span a selection"},
    {"移动正在画的形状", "Move what is drawn"},
    {"结束、取消选择、关闭", "End, deselect, close"},
    {"保存为文档", "Save as document"},
    {"打开文件", "Open file"},
    {"编辑文字，或完成", "Edit text, or finish"},
    {"复制形状，或图片", "Copy shapes, or the picture"},
    {"剪切形状", "Cut shapes"},
    {"粘贴形状，或图片", "Paste shapes, or a picture"},
    {"锁定或解锁", "Lock or unlock"},
    {"移动", "Move"},
    {"移动 10 点", "Move by 10 points"},
    {"再来一份", "Duplicate"},
    {"编组", "Group"},
    {"取消编组", "Ungroup"},
    {"上移一层", "Bring forward"},
    {"下移一层", "Send backward"},
    {"置于顶层", "Bring to front"},
    {"置于底层", "Send to back"},
    {"左右居中", "Align centres"},
    {"上下居中", "Align middles"},
    {"横向均匀分布", "Distribute across"},
    {"纵向均匀分布", "Distribute down"},
    {"按住并拖动画布", "Hold and drag the canvas"},
    {"变细", "Thinner"},
    {"变粗", "Thicker"},
    {"显示整张图片", "Whole picture"},
    {"实际像素", "Actual pixels"},
    {"全屏", "Full screen"},
    {"视图", "View"},
    {"图片", "Picture"},
    {"{}圆角矩形", "{} rounded rectangle"},
    {"{}涂鸦", "{} freehand drawing"},
    {"{}多边形", "{} polygon"},
    {"{}角", "{} angle"},
    {"{}弧线", "{} arc"},
    {"{}批注", "{} comment"},
    {"对勾", "Check"},
    {"叉号", "Cross"},
    {"警告", "Warning"},
    {"问号", "Question"},
    {"爱心", "Heart"},
    {"{}，第 {} 个，共 {} 个", "{}, {} of {}"},
    {"{} 个图形", "{} shapes"},
    {"{}，{}", "{}, {}"},
    {"已左移", "moved left"},
    {"已右移", "moved right"},
    {"已上移", "moved up"},
    {"已下移", "moved down"},
    {"已变大", "made larger"},
    {"已变小", "made smaller"},
    {"已转到 {} 度", "turned to {} degrees"},
    {"已添加", "added"},
    {"改变大小", "Resize"},
    {"改变大小 10 点", "Resize by 10 points"},
    {"旋转 15°", "Turn by 15°"},
    {"下一个或上一个形状", "Next or previous shape"},
    {"笔压", "Pen Pressure"},
    {"只用笔画", "Draw with the Pen Only"},
    {"在中间添加形状", "Add a shape in the middle"},
    {"{}图形", "{} shape"},
    {"：", ": "},
    {"{}，左上", "{}, top left"},
    {"{}，上方", "{}, top"},
    {"{}，右上", "{}, top right"},
    {"{}，左侧", "{}, left"},
    {"{}，中间", "{}, middle"},
    {"{}，右侧", "{}, right"},
    {"{}，左下", "{}, bottom left"},
    {"{}，下方", "{}, bottom"},
    {"{}，右下", "{}, bottom right"},
};

// Translates pens, their sizes and ways to hide; answers with an empty text for any other.
std::string_view englishOfPens(std::string_view text) {
    for (const Pen& pen : pens()) {
        if (pen.text == text) return pen.english;
    }
    for (const PenSize& size : penSizes()) {
        if (size.text == text) return size.english;
    }
    for (const HidingStyle& style : hidingStyles()) {
        if (style.text == text) return style.english;
    }
    return {};
}

// Of a tool with a gap for its colour, when it is called as its pen is.
std::string englishOfTools(std::string_view text) {
    constexpr std::string_view gap = "{}";
    if (!text.starts_with(gap)) return {};
    std::string word(englishOfPens(text.substr(gap.size())));
    if (word.empty()) return {};
    word.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(word.front())));
    return std::string(gap) + " " + word;
}

// Takes the language out of a locale such as "zh_CN.UTF-8".
std::string_view languageOf(std::string_view locale) {
    return locale.substr(0, locale.find_first_of("_-.@"));
}

}  // namespace

std::string englishText(const std::string& text) {
    const auto* const found = std::ranges::find(texts, std::string_view(text),
                                                [](const auto& pair) { return pair.first; });
    if (found != std::end(texts)) return std::string(found->second);
    if (const std::string_view pen = englishOfPens(text); !pen.empty()) return std::string(pen);
    const std::string tool = englishOfTools(text);
    return tool.empty() ? text : tool;
}

bool prefersEnglishTexts(std::string_view locale) {
    const std::string_view language = languageOf(locale);
    return !language.empty() && language != "C" && language != "POSIX" && language != "zh";
}

}  // namespace kalim
