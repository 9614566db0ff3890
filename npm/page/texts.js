// What the page says, in the user's language.

const texts = {
  en: {
    hint: 'Open a picture, drop one here, or paste it.',
    open: 'Open',
    ready: 'Your picture is ready',
    download: 'Download',
    copy: 'Copy',
    share: 'Share',
    document: 'Save Drawing',
    keep: 'Keep Editing',
    another: 'Another Picture',
    copied: 'Copied to the clipboard.',
    refused: 'The browser does not allow that.',
  },
  zh: {
    hint: '打开、拖放或粘贴一张图片。',
    open: '打开',
    ready: '图片已完成',
    download: '下载',
    copy: '复制',
    share: '分享',
    document: '保存标注',
    keep: '继续标注',
    another: '另一张图片',
    copied: '已复制到剪贴板。',
    refused: '浏览器不允许此操作。',
  },
};

export const language = /^zh\b/i.test(navigator.language) ? 'zh' : 'en';
export const say = texts[language];
