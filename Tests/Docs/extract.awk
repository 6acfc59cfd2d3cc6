# Writes the samples of a language in Markdown files to files of their own, one for each sample, whose lines have the
# numbers that they have in the Markdown file. Prints the names of the files.
#
#   awk -v language=cpp -v folder=FOLDER -f extract.awk FILE...
#
# A sample is a fenced block with the name of its language. A comment before the block, which readers do not see, can
# say more about it:
#
#   <!-- sample: given          what the sample needs to have been declared
#   QNetworkAccessManager manager;
#   -->
#   <!-- sample: continues -->  the sample goes on where the one before it ends
#   <!-- sample: skip because ... -->
#
# Statements in C++ become the body of a function, below the includes. A block with a line "{" defines functions or
# classes, and stays as it is.

function complain(message)
{
    printf "%s:%d: %s\n", FILENAME, FNR, message > "/dev/stderr"
    failed = 1
}

function forget_directives()
{
    given_count = 0
    continues = skipped = 0
}

function add(text, number, is_given)
{
    ++count
    texts[count] = text
    numbers[count] = number
    givens[count] = is_given
}

function print_cpp(to, i, wraps, expected)
{
    wraps = 1
    for (i = 1; i <= count; ++i)
        if (!givens[i] && texts[i] == "{")
            wraps = 0
    expected = 0
    for (i = 1; i <= count; ++i)
        if (!wraps || givens[i] || texts[i] ~ /^#include/) {
            if (numbers[i] != expected)
                printf "#line %d \"%s\"\n", numbers[i], FILENAME > to
            print texts[i] > to
            expected = numbers[i] + 1
        }
    if (!wraps)
        return
    print "[[maybe_unused]] static void sample()\n{" > to
    expected = 0
    for (i = 1; i <= count; ++i)
        if (!givens[i] && texts[i] !~ /^#include/) {
            if (numbers[i] != expected)
                printf "#line %d \"%s\"\n", numbers[i], FILENAME > to
            print texts[i] > to
            expected = numbers[i] + 1
        }
    print "}" > to
}

# Blank lines keep the numbers.
function print_padded(to, i, at)
{
    at = 1
    for (i = 1; i <= count; ++i) {
        for (; at < numbers[i]; ++at)
            print "" > to
        print texts[i] > to
        ++at
    }
}

function write_sample(name, to)
{
    name = FILENAME
    gsub("/", "_", name)
    to = folder "/" name "." start "." language
    if (language == "cpp")
        print_cpp(to)
    else
        print_padded(to)
    close(to)
    print to
}

FNR == 1 {
    if (in_block)
        complain("the block before this file does not end")
    in_block = in_comment = count = 0
    forget_directives()
}

# A sample may be in a quotation.
{ sub(/^> ?/, "") }

in_comment {
    if ($0 ~ /^ *-->$/)
        in_comment = 0
    else {
        ++given_count
        given_texts[given_count] = $0
        given_numbers[given_count] = FNR
    }
    next
}

!in_block && /^ *<!-- sample:/ {
    if ($0 ~ /sample: given$/)
        in_comment = 1
    else if ($0 ~ /sample: continues -->$/)
        continues = 1
    else if ($0 ~ /sample: skip because .+ -->$/)
        skipped = 1
    else
        complain("this is not known about samples: " $0)
    next
}

!in_block && /^ *```/ {
    in_block = 1
    start = FNR
    match($0, /^ */)
    indent = RLENGTH
    block_language = substr($0, indent + 4)
    if (block_language !~ /^(|cpp|cmake|qml|sh|text|ini)$/)
        complain("a block in a language that no test knows: " block_language)
    is_sample = block_language == language && !skipped
    if (is_sample) {
        if (!continues)
            count = 0
        else if (count == 0)
            complain("there is no sample before this one")
        for (i = 1; i <= given_count; ++i)
            add(given_texts[i], given_numbers[i], 1)
    }
    next
}

in_block && /^ *```$/ {
    in_block = 0
    if (is_sample)
        write_sample()
    forget_directives()
    next
}

in_block {
    if (is_sample)
        add(substr($0, indent + 1), FNR, 0)
    next
}

NF && !in_block {
    if (given_count || continues || skipped)
        complain("no sample follows what is said about one")
    forget_directives()
}

END {
    exit failed
}
