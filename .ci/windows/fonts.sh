# Gives Wine a Chinese font under the names under which programs for Chinese Windows ask for one.
for name in SimSun 宋体 'MS Shell Dlg' 'MS Shell Dlg 2' Tahoma; do
    wine reg add 'HKCU\Software\Wine\Fonts\Replacements' /v "$name" /d 'WenQuanYi Micro Hei' /f
done
