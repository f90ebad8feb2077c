<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP" sourcelanguage="en">
<context>
    <name>custom</name>
    <message>
        <source>fileUnspecified</source>
        <translation>名称未設定</translation>
    </message>
    <message>
        <source>defaultPageWasLost</source>
        <translation>&lt;!-- このインストールには標準のページがありません。ここからページを書き始めてください。 --&gt;
</translation>
    </message>
    <message>
        <source>template</source>
        <translation>テンプレート</translation>
    </message>
    <message>
        <source>viewer</source>
        <translation>ビューア</translation>
    </message>
    <message>
        <source>noTitle</source>
        <translation>タイトルなし</translation>
    </message>
    <message>
        <source>pathIsNotOne</source>
        <translation>ファイルを1つだけ選んでください。</translation>
    </message>
    <message>
        <source>showInsertTagPalette</source>
        <translation>タグ挿入パレットを表示</translation>
    </message>
    <message>
        <source>hideInsertTagPalette</source>
        <translation>タグ挿入パレットを隠す</translation>
    </message>
    <message>
        <source>showColorPanel</source>
        <translation>カラーパネルを表示</translation>
    </message>
    <message>
        <source>hideColorPanel</source>
        <translation>カラーパネルを隠す</translation>
    </message>
    <message>
        <source>tag</source>
        <translation>タグ</translation>
    </message>
    <message>
        <source>tagName</source>
        <translation>新規タグ</translation>
    </message>
    <message>
        <source>htmlTag</source>
        <translation>HTML タグ</translation>
    </message>
    <message>
        <source>comment</source>
        <translation>コメント</translation>
    </message>
    <message>
        <source>generic</source>
        <translation>汎用</translation>
    </message>
    <message>
        <source>genericTag</source>
        <translation>汎用タグ</translation>
    </message>
    <message>
        <source>quotation</source>
        <translation>引用符</translation>
    </message>
    <message>
        <source>boldFace</source>
        <translation>太字</translation>
    </message>
    <message>
        <source>italic</source>
        <translation>斜体</translation>
    </message>
    <message>
        <source>lineBreak</source>
        <translation>改行</translation>
    </message>
    <message>
        <source>image</source>
        <translation>画像</translation>
    </message>
    <message>
        <source>link</source>
        <translation>リンク</translation>
    </message>
    <message>
        <source>hyperlink</source>
        <translation>ハイパーリンク</translation>
    </message>
    <message>
        <source>single</source>
        <translation>単独タグ</translation>
    </message>
    <message>
        <source>paired</source>
        <translation>対タグ</translation>
    </message>
    <message>
        <source>replaceAll</source>
        <translation>すべて置換</translation>
    </message>
    <message numerus="yes">
        <source>xPlacesAreReplaced</source>
        <translation>
            <numerusform>%n 箇所を置換しました。</numerusform>
        </translation>
    </message>
    <message>
        <source>ready</source>
        <translation>準備完了</translation>
    </message>
    <message>
        <source>running</source>
        <translation>実行中</translation>
    </message>
    <message>
        <source>done</source>
        <translation>完了</translation>
    </message>
    <message>
        <source>start</source>
        <translation>開始</translation>
    </message>
    <message>
        <source>stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>htmlCheckerNotFound</source>
        <translation>HTML チェッカーが見つかりません。環境設定でパスを指定してください。
</translation>
    </message>
    <message>
        <source>htmlFileNotSpecified</source>
        <translation>HTML 書類にはまだファイルがありません。保存してからチェックしてください。
</translation>
    </message>
    <message>
        <source>cssCheckerNotFound</source>
        <translation>CSS チェッカーが見つかりません。環境設定でパスを指定してください。
</translation>
    </message>
    <message>
        <source>cssFileNotSpecified</source>
        <translation>スタイルシートにはまだファイルがありません。保存してからチェックしてください。
</translation>
    </message>
    <message>
        <source>cantExecuteChecker</source>
        <translation>チェッカーを起動できませんでした。
</translation>
    </message>
</context>
<context>
    <name>QFileDialog</name>
    <message>
        <source>Documents (%1)</source>
        <translation>書類 (%1)</translation>
    </message>
    <message>
        <source>All Files (*)</source>
        <translation>すべてのファイル (*)</translation>
    </message>
    <message>
        <source>Applications (*.%1)</source>
        <translation>アプリケーション (*.%1)</translation>
    </message>
    <message>
        <source>Programs (*)</source>
        <translation>プログラム (*)</translation>
    </message>
</context>
<context>
    <name>TWAppDelegate</name>
    <message>
        <source>&amp;New</source>
        <translation>新規(&amp;N)</translation>
    </message>
    <message>
        <source>&amp;Open...</source>
        <translation>開く(&amp;O)…</translation>
    </message>
    <message>
        <source>New &amp;Project</source>
        <translation>新規プロジェクト(&amp;P)</translation>
    </message>
    <message>
        <source>Save P&amp;roject As...</source>
        <translation>プロジェクトを別名で保存(&amp;R)…</translation>
    </message>
    <message>
        <source>&amp;Export Combined HTML As...</source>
        <translation>結合した HTML を書き出す(&amp;E)…</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>保存(&amp;S)</translation>
    </message>
    <message>
        <source>Save &amp;As...</source>
        <translation>別名で保存(&amp;A)…</translation>
    </message>
    <message>
        <source>Insert &amp;Link to File...</source>
        <translation>ファイルへのリンクを挿入(&amp;L)…</translation>
    </message>
    <message>
        <source>Insert &amp;Image...</source>
        <translation>画像を挿入(&amp;I)…</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>終了(&amp;Q)</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>取り消す(&amp;U)</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>やり直す(&amp;R)</translation>
    </message>
    <message>
        <source>Cu&amp;t</source>
        <translation>カット(&amp;T)</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>コピー(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Paste</source>
        <translation>ペースト(&amp;P)</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>すべてを選択(&amp;A)</translation>
    </message>
    <message>
        <source>Pre&amp;ferences...</source>
        <translation>環境設定(&amp;F)…</translation>
    </message>
    <message>
        <source>Auto &amp;Indent</source>
        <translation>自動インデント(&amp;I)</translation>
    </message>
    <message>
        <source>&amp;Jump to Line...</source>
        <translation>指定行へ移動(&amp;J)…</translation>
    </message>
    <message>
        <source>&amp;Find...</source>
        <translation>検索(&amp;F)…</translation>
    </message>
    <message>
        <source>Find &amp;Next</source>
        <translation>次を検索(&amp;N)</translation>
    </message>
    <message>
        <source>&amp;Replace</source>
        <translation>置換(&amp;R)</translation>
    </message>
    <message>
        <source>Replace &amp;&amp; F&amp;ind</source>
        <translation>置換して次を検索(&amp;I)</translation>
    </message>
    <message>
        <source>Replace &amp;All</source>
        <translation>すべて置換(&amp;A)</translation>
    </message>
    <message>
        <source>Apply &amp;Template</source>
        <translation>テンプレートを適用(&amp;T)</translation>
    </message>
    <message>
        <source>&amp;HTML</source>
        <translation>HTML(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;Template</source>
        <translation>テンプレート(&amp;T)</translation>
    </message>
    <message>
        <source>&amp;Style Sheet</source>
        <translation>スタイルシート(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Viewer</source>
        <translation>ビューア(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;Checker</source>
        <translation>チェッカー(&amp;C)</translation>
    </message>
    <message>
        <source>Tag &amp;Library</source>
        <translation>タグライブラリ(&amp;L)</translation>
    </message>
    <message>
        <source>&amp;Render Now</source>
        <translation>今すぐレンダリング(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Auto Rendering</source>
        <translation>自動レンダリング(&amp;A)</translation>
    </message>
    <message>
        <source>&amp;Stop Rendering</source>
        <translation>レンダリングを停止(&amp;S)</translation>
    </message>
    <message>
        <source>Apply &amp;CSS</source>
        <translation>CSS を適用(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Line Breaks as &lt;br&gt;</source>
        <translation>改行を &lt;br&gt; にする(&amp;L)</translation>
    </message>
    <message>
        <source>C&amp;lear Cache</source>
        <translation>キャッシュを消去(&amp;L)</translation>
    </message>
    <message>
        <source>Save CSS and Clear Cache</source>
        <translation>CSS を保存してキャッシュを消去</translation>
    </message>
    <message>
        <source>Line &amp;Numbers</source>
        <translation>行番号(&amp;N)</translation>
    </message>
    <message>
        <source>In &amp;Browser</source>
        <translation>ブラウザで開く(&amp;B)</translation>
    </message>
    <message>
        <source>Tag &amp;Coloring</source>
        <translation>タグの色分け(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Single Tag</source>
        <translation>単独タグ(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Paired Tag</source>
        <translation>対タグ(&amp;P)</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>ファイル(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>編集(&amp;E)</translation>
    </message>
    <message>
        <source>Fin&amp;d</source>
        <translation>検索(&amp;D)</translation>
    </message>
    <message>
        <source>&amp;Insert</source>
        <translation>挿入(&amp;I)</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>表示(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>ウインドウ(&amp;W)</translation>
    </message>
    <message>
        <source>Your settings file could not be read. It was kept as %1, and Tagwright started with its defaults.</source>
        <translation>設定ファイルを読み込めませんでした。そのファイルは %1 として残し、Tagwright は初期設定で起動しました。</translation>
    </message>
    <message>
        <source>When Tagwright last quit, your settings and texts could not be saved in %1. They were kept in %2 and are back now.</source>
        <translation>前回 Tagwright を終了したとき、設定とテキストを %1 に保存できませんでした。%2 に保管しておいたものを元に戻しました。</translation>
    </message>
    <message>
        <source>Your tag library could not be read (%1). It was kept in %2; the standard library is used meanwhile.</source>
        <translation>タグライブラリを読み込めませんでした（%1）。そのファイルは %2 に残してあります。それまでは標準のライブラリを使います。</translation>
    </message>
    <message>
        <source>Tagwright did not quit properly last time. The texts you were working on have been recovered.</source>
        <translation>前回 Tagwright は正しく終了しませんでした。作業中だったテキストを復元しました。</translation>
    </message>
    <message>
        <source>It holds no HTML page.</source>
        <translation>HTML ページが含まれていません。</translation>
    </message>
    <message>
        <source>%1: %2 The HTML window shows the default page in place of yours.</source>
        <translation>%1: %2 HTML ウインドウには、あなたのページの代わりに標準のページを表示しています。</translation>
    </message>
    <message>
        <source>Bring Back My Page</source>
        <translation>自分のページに戻す</translation>
    </message>
</context>
<context>
    <name>TWColorPanel</name>
    <message>
        <source>Color</source>
        <translation>カラー</translation>
    </message>
    <message>
        <source>&amp;Name</source>
        <translation>名前(&amp;N)</translation>
    </message>
    <message>
        <source>A colour by its name</source>
        <translation>名前で指定する色</translation>
    </message>
    <message>
        <source>&amp;Code</source>
        <translation>コード(&amp;C)</translation>
    </message>
    <message>
        <source>A colour by its hexadecimal code: click to choose the colour</source>
        <translation>16 進コードで指定する色。クリックすると色を選べます</translation>
    </message>
    <message>
        <source>&amp;Auto Insert</source>
        <translation>自動挿入(&amp;A)</translation>
    </message>
    <message>
        <source>Insert the value at every change of choice</source>
        <translation>選択を変えるたびに値を挿入します</translation>
    </message>
    <message>
        <source>&amp;Insert</source>
        <translation>挿入(&amp;I)</translation>
    </message>
</context>
<context>
    <name>TWExBrowserTableModel</name>
    <message>
        <source>Browser</source>
        <translation>ブラウザ</translation>
    </message>
</context>
<context>
    <name>TWFindPanel</name>
    <message>
        <source>Find</source>
        <translation>検索</translation>
    </message>
    <message>
        <source>F&amp;ind:</source>
        <translation>検索(&amp;I):</translation>
    </message>
    <message>
        <source>Replace &amp;with:</source>
        <translation>置換(&amp;W):</translation>
    </message>
    <message>
        <source>Search &amp;upward</source>
        <translation>上方向に検索(&amp;U)</translation>
    </message>
    <message>
        <source>Ignore &amp;case</source>
        <translation>大文字と小文字を区別しない(&amp;C)</translation>
    </message>
    <message>
        <source>Wrap ar&amp;ound</source>
        <translation>先頭に戻って検索(&amp;O)</translation>
    </message>
    <message>
        <source>Replace &amp;All</source>
        <translation>すべて置換(&amp;A)</translation>
    </message>
    <message>
        <source>&amp;Replace</source>
        <translation>置換(&amp;R)</translation>
    </message>
    <message>
        <source>Replace &amp;&amp; &amp;Find</source>
        <translation>置換して検索(&amp;F)</translation>
    </message>
    <message>
        <source>Fi&amp;nd</source>
        <translation>検索(&amp;N)</translation>
    </message>
</context>
<context>
    <name>TWHTMLCheckerWindow</name>
    <message>
        <source>Checker</source>
        <translation>チェッカー</translation>
    </message>
    <message>
        <source>What to check: the HTML document&apos;s file or the style sheet&apos;s file, as last saved</source>
        <translation>チェックする対象: HTML 書類のファイルかスタイルシートのファイル（最後に保存した内容）</translation>
    </message>
</context>
<context>
    <name>TWHTMLTagEditPanelController</name>
    <message>
        <source>Choose the tag&apos;s colour (now %1)</source>
        <translation>タグの色を選びます（現在は %1）</translation>
    </message>
</context>
<context>
    <name>TWHTMLTagLibraryTableModel</name>
    <message>
        <source>Type</source>
        <translation>種類</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>メニュー</translation>
    </message>
    <message>
        <source>Colour</source>
        <translation>色</translation>
    </message>
    <message>
        <source>Tag</source>
        <translation>タグ</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名前</translation>
    </message>
    <message>
        <source>First Tag</source>
        <translation>前のタグ</translation>
    </message>
    <message>
        <source>Second Tag</source>
        <translation>後のタグ</translation>
    </message>
    <message>
        <source>Sample</source>
        <translation>見本</translation>
    </message>
    <message>
        <source>Key</source>
        <translation>キー</translation>
    </message>
    <message>
        <source>Menu Title</source>
        <translation>メニュー項目名</translation>
    </message>
</context>
<context>
    <name>TWHTMLTagPanel</name>
    <message>
        <source>Edit Tag</source>
        <translation>タグを編集</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>名前(&amp;N):</translation>
    </message>
    <message>
        <source>The name shown in the tag library</source>
        <translation>タグライブラリに表示する名前</translation>
    </message>
    <message>
        <source>&amp;Element:</source>
        <translation>要素(&amp;E):</translation>
    </message>
    <message>
        <source>The element name that tag colouring gives this tag&apos;s colour, without angle brackets</source>
        <translation>タグの色分けでこのタグの色を付ける要素名（山括弧なし）</translation>
    </message>
    <message>
        <source>T&amp;ype:</source>
        <translation>種類(&amp;Y):</translation>
    </message>
    <message>
        <source>Single: the first tag replaces the selection. Paired: the two tags enclose it.</source>
        <translation>単独: 前のタグで選択範囲を置き換えます。対: 2つのタグで選択範囲を囲みます。</translation>
    </message>
    <message>
        <source>Single</source>
        <translation>単独</translation>
    </message>
    <message>
        <source>Paired</source>
        <translation>対</translation>
    </message>
    <message>
        <source>&amp;First tag:</source>
        <translation>前のタグ(&amp;F):</translation>
    </message>
    <message>
        <source>The text inserted before the selection, or instead of it for a single tag</source>
        <translation>選択範囲の前に挿入するテキスト（単独タグでは選択範囲と置き換えるテキスト）</translation>
    </message>
    <message>
        <source>&amp;Second tag:</source>
        <translation>後のタグ(&amp;S):</translation>
    </message>
    <message>
        <source>The text inserted after the selection</source>
        <translation>選択範囲の後に挿入するテキスト</translation>
    </message>
    <message>
        <source>List in the insert-tag &amp;menus</source>
        <translation>タグ挿入メニューに表示(&amp;M)</translation>
    </message>
    <message>
        <source>Menu &amp;title:</source>
        <translation>メニュー項目名(&amp;T):</translation>
    </message>
    <message>
        <source>The title of the tag&apos;s item in the insert-tag menus and the palette</source>
        <translation>タグ挿入メニューとパレットに表示するこのタグの項目名</translation>
    </message>
    <message>
        <source>Shortcut &amp;key: Ctrl+Alt+</source>
        <translation>ショートカットキー(&amp;K): Ctrl+Alt+</translation>
    </message>
    <message>
        <source>One character; a key that another tag already has is refused</source>
        <translation>1文字。ほかのタグが使っているキーは指定できません</translation>
    </message>
    <message>
        <source>&amp;Colour of its own:</source>
        <translation>固有の色(&amp;C):</translation>
    </message>
    <message>
        <source>Tag colouring shows the element name in this colour instead of the generic tag&apos;s</source>
        <translation>タグの色分けで、この要素名を汎用タグの色ではなくこの色で表示します</translation>
    </message>
    <message>
        <source>Choose the tag&apos;s colour</source>
        <translation>タグの色を選びます</translation>
    </message>
    <message>
        <source>Tag colour</source>
        <translation>タグの色</translation>
    </message>
</context>
<context>
    <name>TWInsertTagPalette</name>
    <message>
        <source>Insert Tag</source>
        <translation>タグを挿入</translation>
    </message>
    <message>
        <source>Insert a single tag at the insertion point</source>
        <translation>挿入ポイントに単独タグを挿入します</translation>
    </message>
    <message>
        <source>Put a pair of tags around the selection</source>
        <translation>選択範囲を対のタグで囲みます</translation>
    </message>
</context>
<context>
    <name>TWLineNumberDialog</name>
    <message>
        <source>Jump to Line</source>
        <translation>指定行へ移動</translation>
    </message>
    <message>
        <source>Line:</source>
        <translation>行:</translation>
    </message>
</context>
<context>
    <name>TWLoadErrorText</name>
    <message>
        <source>The server answered with an error (HTTP status %1).</source>
        <translation>サーバがエラーを返しました（HTTP ステータス %1）。</translation>
    </message>
    <message>
        <source>Loading was stopped.</source>
        <translation>読み込みを中止しました。</translation>
    </message>
    <message>
        <source>The file was not found.</source>
        <translation>ファイルが見つかりません。</translation>
    </message>
    <message>
        <source>The file is too large to show.</source>
        <translation>ファイルが大きすぎて表示できません。</translation>
    </message>
    <message>
        <source>The file may not be read.</source>
        <translation>ファイルを読み込む権限がありません。</translation>
    </message>
    <message>
        <source>The server took too long to answer.</source>
        <translation>サーバの応答がタイムアウトしました。</translation>
    </message>
    <message>
        <source>The server refused the connection.</source>
        <translation>サーバが接続を拒否しました。</translation>
    </message>
    <message>
        <source>The connection to the server was lost.</source>
        <translation>サーバとの接続が切れました。</translation>
    </message>
    <message>
        <source>The server&apos;s name was not found.</source>
        <translation>サーバ名が見つかりません。</translation>
    </message>
    <message>
        <source>The server cannot be reached.</source>
        <translation>サーバに到達できません。</translation>
    </message>
    <message>
        <source>The address is not valid.</source>
        <translation>アドレスが正しくありません。</translation>
    </message>
    <message>
        <source>The viewer cannot open this kind of address.</source>
        <translation>ビューアはこの種類のアドレスを開けません。</translation>
    </message>
    <message>
        <source>The server redirected too many times.</source>
        <translation>サーバのリダイレクトが多すぎます。</translation>
    </message>
    <message>
        <source>The server&apos;s certificate is not valid.</source>
        <translation>サーバの証明書が無効です。</translation>
    </message>
    <message>
        <source>The page could not be loaded (error %1).</source>
        <translation>ページを読み込めませんでした（エラー %1）。</translation>
    </message>
    <message>
        <source>The page could not be loaded (%1).</source>
        <translation>ページを読み込めませんでした（%1）。</translation>
    </message>
</context>
<context>
    <name>TWMessageBar</name>
    <message>
        <source>Close this message</source>
        <translation>このメッセージを閉じる</translation>
    </message>
</context>
<context>
    <name>TWOpenFailureMessage</name>
    <message>
        <source>“%1” could not be read.</source>
        <translation>「%1」を読み込めませんでした。</translation>
    </message>
    <message>
        <source>“%1” could not be opened: it is not %2 text, the encoding chosen for files, nor text in any other encoding Tagwright reads.</source>
        <translation>「%1」を開けませんでした。ファイルの文字コードに選ばれている %2 のテキストではなく、Tagwright が読めるほかの文字コードのテキストでもありません。</translation>
    </message>
    <message>
        <source>“%1” could not be opened: it is not %2 text, the encoding chosen for files.</source>
        <translation>「%1」を開けませんでした。ファイルの文字コードに選ばれている %2 のテキストではありません。</translation>
    </message>
    <message>
        <source>Open as %1</source>
        <translation>%1 として開く</translation>
    </message>
</context>
<context>
    <name>TWOutputLimit</name>
    <message>
        <source>
[Only the first %1 MB of the output are shown.]
</source>
        <translation>
[出力のうち最初の %1 MB だけを表示しています。]
</translation>
    </message>
    <message>
        <source>
[%1 more characters were not shown.]
</source>
        <translation>
[残りの %1 文字は表示していません。]
</translation>
    </message>
</context>
<context>
    <name>TWPreferencePanel</name>
    <message>
        <source>Preferences</source>
        <translation>環境設定</translation>
    </message>
    <message>
        <source>Fonts</source>
        <translation>フォント</translation>
    </message>
    <message>
        <source>&amp;Viewer:</source>
        <translation>ビューア(&amp;V):</translation>
    </message>
    <message>
        <source>Proportional text of the preview</source>
        <translation>プレビューのプロポーショナルフォント</translation>
    </message>
    <message>
        <source>Size in points</source>
        <translation>サイズ（ポイント）</translation>
    </message>
    <message>
        <source>Choose...</source>
        <translation>選択…</translation>
    </message>
    <message>
        <source>Viewer &amp;fixed-pitch:</source>
        <translation>ビューアの等幅(&amp;F):</translation>
    </message>
    <message>
        <source>Fixed-pitch text of the preview (pre, code)</source>
        <translation>プレビューの等幅フォント（pre, code）</translation>
    </message>
    <message>
        <source>&amp;HTML:</source>
        <translation>HTML(&amp;H):</translation>
    </message>
    <message>
        <source>The HTML window</source>
        <translation>HTML ウインドウ</translation>
    </message>
    <message>
        <source>&amp;Template:</source>
        <translation>テンプレート(&amp;T):</translation>
    </message>
    <message>
        <source>Both halves of the template</source>
        <translation>テンプレートの上下両方</translation>
    </message>
    <message>
        <source>&amp;Style sheet:</source>
        <translation>スタイルシート(&amp;S):</translation>
    </message>
    <message>
        <source>The style sheet window</source>
        <translation>スタイルシートウインドウ</translation>
    </message>
    <message>
        <source>Editor</source>
        <translation>エディタ</translation>
    </message>
    <message>
        <source>&amp;Text colour:</source>
        <translation>文字の色(&amp;T):</translation>
    </message>
    <message>
        <source>Colour of plain text in the HTML window</source>
        <translation>HTML ウインドウの通常の文字の色</translation>
    </message>
    <message>
        <source>&amp;Background colour:</source>
        <translation>背景色(&amp;B):</translation>
    </message>
    <message>
        <source>Background of the HTML window</source>
        <translation>HTML ウインドウの背景</translation>
    </message>
    <message>
        <source>&amp;Opacity:</source>
        <translation>不透明度(&amp;O):</translation>
    </message>
    <message>
        <source>Opacity of the background, in percent</source>
        <translation>背景の不透明度（パーセント）</translation>
    </message>
    <message>
        <source>Hold back &amp;rendering while typing</source>
        <translation>入力中はレンダリングを控える(&amp;R)</translation>
    </message>
    <message>
        <source>Hold back tag &amp;colouring while typing</source>
        <translation>入力中はタグの色分けを控える(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Until a pause of:</source>
        <translation>入力が止まってから(&amp;U):</translation>
    </message>
    <message>
        <source>Seconds without a keystroke</source>
        <translation>キー入力がない秒数</translation>
    </message>
    <message>
        <source>seconds</source>
        <translation>秒</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>ファイル</translation>
    </message>
    <message>
        <source>Default &amp;base URL:</source>
        <translation>標準のベース URL(&amp;B):</translation>
    </message>
    <message>
        <source>Where links and images of a new page are looked for</source>
        <translation>新しいページのリンクや画像を探す場所</translation>
    </message>
    <message>
        <source>Text &amp;encoding:</source>
        <translation>文字コード(&amp;E):</translation>
    </message>
    <message>
        <source>&amp;Line ends:</source>
        <translation>改行コード(&amp;L):</translation>
    </message>
    <message>
        <source>Checkers</source>
        <translation>チェッカー</translation>
    </message>
    <message>
        <source>&amp;HTML checker:</source>
        <translation>HTML チェッカー(&amp;H):</translation>
    </message>
    <message>
        <source>The program that checks the file</source>
        <translation>ファイルをチェックするプログラム</translation>
    </message>
    <message>
        <source>O&amp;ptions:</source>
        <translation>オプション(&amp;P):</translation>
    </message>
    <message>
        <source>Given to the program before the file</source>
        <translation>ファイル名の前にプログラムに渡す引数</translation>
    </message>
    <message>
        <source>&amp;CSS checker:</source>
        <translation>CSS チェッカー(&amp;C):</translation>
    </message>
    <message>
        <source>Op&amp;tions:</source>
        <translation>オプション(&amp;T):</translation>
    </message>
    <message>
        <source>Browsers</source>
        <translation>ブラウザ</translation>
    </message>
    <message>
        <source>The View menu opens the page in these. Drag to reorder.</source>
        <translation>表示メニューから、これらのブラウザでページを開けます。ドラッグで並べ替えられます。</translation>
    </message>
    <message>
        <source>&amp;Add...</source>
        <translation>追加(&amp;A)…</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>削除(&amp;R)</translation>
    </message>
    <message>
        <source>At most ten.</source>
        <translation>10 個まで。</translation>
    </message>
</context>
<context>
    <name>TWPreferencesPanelController</name>
    <message>
        <source>CR (classic Mac)</source>
        <translation>CR（旧 Mac OS）</translation>
    </message>
    <message>
        <source>LF (Linux, macOS)</source>
        <translation>LF（Linux、macOS）</translation>
    </message>
    <message>
        <source>CR LF (Windows)</source>
        <translation>CR LF（Windows）</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
</context>
<context>
    <name>TWProjectFile</name>
    <message>
        <source>The file could not be read.</source>
        <translation>ファイルを読み込めませんでした。</translation>
    </message>
    <message>
        <source>This is not a Tagwright project.</source>
        <translation>Tagwright のプロジェクトではありません。</translation>
    </message>
</context>
<context>
    <name>TWTagLibraryWindow</name>
    <message>
        <source>Tag Library</source>
        <translation>タグライブラリ</translation>
    </message>
    <message>
        <source>&amp;New</source>
        <translation>新規(&amp;N)</translation>
    </message>
    <message>
        <source>Adds a new tag at the end of the library</source>
        <translation>ライブラリの末尾に新しいタグを追加します</translation>
    </message>
    <message>
        <source>&amp;Duplicate</source>
        <translation>複製(&amp;D)</translation>
    </message>
    <message>
        <source>Copies the selected tags, each right after its original</source>
        <translation>選択したタグを、それぞれ元のタグの直後に複製します</translation>
    </message>
    <message>
        <source>&amp;Edit...</source>
        <translation>編集(&amp;E)…</translation>
    </message>
    <message>
        <source>Edits the selected tag field by field</source>
        <translation>選択したタグを項目ごとに編集します</translation>
    </message>
    <message>
        <source>De&amp;lete</source>
        <translation>削除(&amp;L)</translation>
    </message>
    <message>
        <source>Deletes the selected tags (the comment, generic tag and quotation stay)</source>
        <translation>選択したタグを削除します（コメント、汎用タグ、引用符は残ります）</translation>
    </message>
    <message>
        <source>&amp;Import...</source>
        <translation>読み込む(&amp;I)…</translation>
    </message>
    <message>
        <source>Replaces the library by the tags of a .tlib file</source>
        <translation>ライブラリを .tlib ファイルのタグで置き換えます</translation>
    </message>
    <message>
        <source>E&amp;xport...</source>
        <translation>書き出す(&amp;X)…</translation>
    </message>
    <message>
        <source>Writes the library into a .tlib file</source>
        <translation>ライブラリを .tlib ファイルに書き出します</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>閉じる(&amp;C)</translation>
    </message>
</context>
<context>
    <name>TWTagLibraryWindowController</name>
    <message>
        <source>The file could not be read.</source>
        <translation>ファイルを読み込めませんでした。</translation>
    </message>
    <message>
        <source>It is not text in UTF-8 or %1.</source>
        <translation>UTF-8 または %1 のテキストではありません。</translation>
    </message>
    <message>
        <source>%1 was not imported: %2. The library is as it was.</source>
        <translation>%1 は読み込まれませんでした（%2）。ライブラリは元のままです。</translation>
    </message>
    <message>
        <source>The library could not be written to %1.</source>
        <translation>ライブラリを %1 に書き込めませんでした。</translation>
    </message>
</context>
<context>
    <name>TWTemplateWindow</name>
    <message>
        <source>Top half: the markup before your HTML</source>
        <translation>上半分: HTML の前に置くマークアップ</translation>
    </message>
    <message>
        <source>Bottom half: the markup after your HTML</source>
        <translation>下半分: HTML の後に置くマークアップ</translation>
    </message>
</context>
<context>
    <name>TWViewWindow</name>
    <message>
        <source>Base URL:</source>
        <translation>ベース URL:</translation>
    </message>
    <message>
        <source>Relative links and images of the page are found from here. Press Return to apply.</source>
        <translation>ページの相対リンクや画像は、ここを基準に探します。Return キーで適用します。</translation>
    </message>
    <message>
        <source>Choose a file as the base URL</source>
        <translation>ベース URL にするファイルを選びます</translation>
    </message>
    <message>
        <source>...</source>
        <translation>...</translation>
    </message>
</context>
<context>
    <name>TWViewWindowController</name>
    <message>
        <source>Template</source>
        <translation>テンプレート</translation>
    </message>
    <message>
        <source>Apply the template (struck through: the template is not applied)</source>
        <translation>テンプレートを適用（取り消し線: 適用しない）</translation>
    </message>
    <message>
        <source>CSS</source>
        <translation>CSS</translation>
    </message>
    <message>
        <source>Apply the style sheet (struck through: not applied)</source>
        <translation>スタイルシートを適用（取り消し線: 適用しない）</translation>
    </message>
    <message>
        <source>Auto</source>
        <translation>自動</translation>
    </message>
    <message>
        <source>Render while typing (struck through: only on request)</source>
        <translation>入力中にレンダリング（取り消し線: 指示したときだけ）</translation>
    </message>
    <message>
        <source>&lt;br&gt;</source>
        <translation>&lt;br&gt;</translation>
    </message>
    <message>
        <source>Every line break becomes &lt;br&gt; (struck through: off)</source>
        <translation>改行をすべて &lt;br&gt; にする（取り消し線: オフ）</translation>
    </message>
</context>
</TS>
