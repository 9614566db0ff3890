// What the page says, in the user's language.

import { textsFor } from './kalimkit/host/browser/languages.js';

const texts = await textsFor(navigator.language);
const own = {
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
};

export const { language } = texts;
export const direction = texts.find('@direction') ?? 'ltr';
export const say = Object.fromEntries(Object.entries(own).map(([name, text]) => [name, texts.say(text)]));
